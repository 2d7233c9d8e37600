# The order of the house: each folder of src/, and behind it the folders that it may include beside its own and core.
# What those may include, it may include too. The build and the test `house_rules` read this file.
set(NORWEN_LAYERS
  "core:"
  "protocols:"
  "protocols/line: protocols"
  "protocols/modbus: protocols/line"
  "protocols/bsap: protocols/line"
  "protocols/quantum: protocols/line"
  "protocols/inspect: protocols/modbus protocols/bsap protocols/quantum"
  "stations:"
  "mail:"
  "reading: stations protocols/modbus protocols/bsap protocols/quantum"
  "collection: reading"
  "archive: stations protocols/line"
  "archive/store: archive"
  "archive/bsap: archive/store protocols/bsap"
  "archive/modbus: archive/store protocols/modbus"
  "archive/view: archive/store"
  "reports: collection mail"
  "session: reading archive/bsap archive/modbus"
  "session/editor: session"
  "signals/lists: session"
  "signals/change: signals/lists"
  "signals/calibration: signals/lists"
  "desk/kit: reading"
  "desk/platform: desk/kit protocols/line"
  "desk/mail: desk/kit collection mail"
  "desk/reports: desk/kit reports"
  "desk/collection: desk/kit reports"
  "desk/archive: desk/collection desk/mail session archive/view"
  "desk/signals: desk/collection signals/change signals/calibration"
  "desk/session: desk/archive desk/signals session/editor protocols/inspect"
  "desk/stations: desk/session"
  "desk/shell: desk/platform desk/reports desk/stations"
)

# Sets `result` to the folders that `folder` may include, core and its own among them.
function(norwen_below folder result)
  set(below core ${folder})
  foreach(layer ${NORWEN_LAYERS})
    if(layer MATCHES "^${folder}:(.*)$")
      string(REGEX MATCHALL "[^ ]+" direct "${CMAKE_MATCH_1}")
      foreach(name ${direct})
        norwen_below(${name} further)
        list(APPEND below ${further})
      endforeach()
    endif()
  endforeach()
  list(REMOVE_DUPLICATES below)
  set(${result} ${below} PARENT_SCOPE)
endfunction()

-- The station's one database. Keys exist by use: nothing relies on a declared key, and a station is deleted table by table.
-- Texts compare without case, since statements spell one value in several ways. Dates are ISO text.
-- Rows that are inserted by position depend on the order of the columns.
--
-- The schema has a version. A file of an earlier one is brought up at the start of the program (core/Schema.cpp); both
-- ways must lead to the same tables.
pragma user_version = 2;

-- Stations ---------------------------------------------------------------------------------------------------------

create table configdata_master (
  locationID integer,
  consumer text collate nocase,
  presentallocation double,
  rtumake text collate nocase,
  modelno text collate nocase,
  comtype text collate nocase,
  systemtype text collate nocase,
  voltlimit double,
  delaytime integer,                    -- ms
  drs integer,
  ip text collate nocase,
  comport text collate nocase,
  baudrate text collate nocase,         -- "9600,N,8,1"
  phoneno text collate nocase,
  protocol text collate nocase,
  slaveaddress integer,
  groupno integer,
  groupcnt integer,
  aga3_7 boolean,                       -- true AGA3, false AGA7
  aga8_fpv boolean,                     -- true AGA8, false NX-19
  Gross_Detail boolean,                 -- true Gross, false Detail
  gasauto boolean,
  MGO_Qty double,
  Cont_Pr double,
  No_Stream integer,
  stream1 text collate nocase,
  stream2 text collate nocase,
  stream3 text collate nocase,
  stream4 text collate nocase,
  mode text collate nocase,
  duration text collate nocase,
  day text collate nocase,
  contracthour text collate nocase,     -- "08:00"
  rtubits boolean,
  emailto text collate nocase,
  emailcc text collate nocase,
  emailbcc text collate nocase,
  emailsubject text collate nocase,
  MB_CONFIG boolean,
  sampledtoday boolean,
  sampleddate integer,                  -- day of the month
  framing text collate nocase default 'required', -- of Modbus ASCII: 'required' or 'standard'
  pacing text collate nocase default 'stated', -- 'stated' or 'prompt'
  wordorder text collate nocase default 'high' -- of Modbus floats: the word that comes first, 'high' or 'low'
);
create index configdata_master_location on configdata_master (locationID);
create index configdata_master_consumer on configdata_master (consumer);
create index configdata_master_group on configdata_master (groupno);

create table configdata_detail (
  locationID integer,
  description text collate nocase,
  startaddress text collate nocase,     -- a list position "54-83" or a register
  type text collate nocase,
  srno integer,
  lastvalue double,
  groupno integer,
  unit text collate nocase,
  aga text collate nocase,
  MSD integer,
  CFP boolean,
  RS integer,
  WS integer,
  StreamNo integer default 1,
  readat text,                          -- when lastvalue was read: local time; null: never
  quality text                          -- of the last reading: 'good', 'not received', 'refused', 'out of range', 'not confirmed'
);
create index configdata_detail_address on configdata_detail (locationID, StreamNo, startaddress);
create index configdata_detail_description on configdata_detail (locationID, StreamNo, description);
create index configdata_detail_group on configdata_detail (locationID, StreamNo, aga);

create table mdbus_table (
  locationID integer,
  Description text collate nocase,
  address text collate nocase,
  datatype text collate nocase,
  srno integer,
  lastvalue double,
  groupno integer,
  unit text collate nocase,
  aga text collate nocase,
  MBUS integer,
  CFP boolean,
  RS integer,
  WS integer,
  StreamNo integer default 1
);
create index mdbus_table_location on mdbus_table (locationID);

create table SummaryPara (
  LocationID integer,
  description text collate nocase,
  lastvalue double
);
create index SummaryPara_location on SummaryPara (LocationID);

create table write_gc (
  locationid integer,
  description text collate nocase,
  startaddress text collate nocase,
  lastvalue double
);
create index write_gc_location on write_gc (locationid);

-- What collections leave -------------------------------------------------------------------------------------------

create table LogParam (
  LocationId integer,
  date text,
  "desc" text collate nocase,
  CurrentDayFlow double,
  CurrentMonthFlow double,
  currentprs double
);
create index LogParam_location on LogParam (LocationId, date);
create index LogParam_date on LogParam (date);

-- A row a run: what was to be collected, when, and what came of it. Times are local.
create table outcome (
  locationID integer,
  gasday text,                          -- "2026-03-09": the day of the contract hour
  due text,                             -- the contract hour that the run serves; null: none
  begun text,
  ended text,
  how text,                             -- 'schedule', 'late', 'retry', 'hand'
  attempts integer,
  line text,
  asked integer,                        -- values
  received integer,
  result text,                          -- 'collected', 'partly', 'not reached', 'no answer', 'refused', 'broken off'
  reason text,                          -- a sentence
  doubtful boolean                      -- true: the clock was set back behind `begun`
);
create index outcome_day on outcome (locationID, gasday);

-- The figures of a station's gas day. A day is known by station and day and never moves; LogParam is kept beside it.
-- Both flows of a Quantum unit are counters of its lifetime.
create table gasday (
  locationID integer,
  gasday text,
  readat text,
  dayflow double,
  monthflow double,
  pressure double,
  doubtful boolean                      -- true: the clock was set back behind `readat`
);
create unique index gasday_day on gasday (locationID, gasday);

-- One row: all contract hours up to this minute have their outcome.
create table schedule_state (
  servedto text
);

create table Scheduler (
  Sch_date text collate nocase,
  Sch_time text collate nocase,
  RTUName text collate nocase,
  RTU_Type text collate nocase
);
create index Scheduler_name on Scheduler (RTUName, Sch_date);

create table sched_temp (
  descrip text collate nocase,
  Lastvalue double,
  unit text collate nocase
);

create table daily_rep (
  srno integer,
  consumer text collate nocase,
  presentallocation double,
  MGO_Qty double,
  dayflow double,
  monthflow double,
  averageflow double,
  pressure double,
  Cont_Pr double,
  status text collate nocase
);

create table tblmail (
  "Node Name" text collate nocase,
  "Total Volume Accumulated" double,
  "Volume Today" double,
  "Volume Yesterday" double,
  "Volume This Month" double,
  "Volume Last Month" double,
  "Total Un Volume Accumulated" double,
  "Uncorrected Volume Today" double,
  "Uncorrected Volume Yesterday" double,
  "Uncorrected Volume This Month" double,
  "Uncorrected Volume Last Month" double,
  "Flow Time Today" double,
  "Flow Time Yesterday" double,
  "Energy Today" double,
  "Energy Yesterday" double,
  "Energy This Month" double,
  "Energy Last Month" double
);

-- Fixed contents: the templates and the lists of the screens ----------------------------------------------------------

-- Modbus and BSAP rows list a station's two signal lists: address (BSAP rows: startaddress) is the list position,
-- MBUS the register number, which is the same position.
create table parameter (
  protocol text collate nocase,
  srno integer,
  Description text collate nocase,
  address text collate nocase,
  datatype text collate nocase,
  type text collate nocase,
  unit text collate nocase,
  aga text collate nocase,
  MBUS integer,
  CFP boolean,
  RS integer,
  WS integer,
  startaddress text collate nocase
);
create index parameter_protocol on parameter (protocol, srno);
create index parameter_description on parameter (Description);

-- The signal lists of the CW models, a table a metering method.
create table mdbus_mflow_aga3 (
  description text collate nocase,
  startaddress text collate nocase,
  type text collate nocase,
  unit text collate nocase,
  aga text collate nocase,
  CFP boolean,
  RS integer,
  WS integer,
  MSD integer,
  srno integer
);
create table mdbus_mflow_aga7 (
  description text collate nocase,
  startaddress text collate nocase,
  type text collate nocase,
  unit text collate nocase,
  aga text collate nocase,
  CFP boolean,
  RS integer,
  WS integer,
  MSD integer,
  srno integer
);
create table mdbus_mflow_aga9 (
  description text collate nocase,
  startaddress text collate nocase,
  type text collate nocase,
  unit text collate nocase,
  aga text collate nocase,
  CFP boolean,
  RS integer,
  WS integer,
  MSD integer,
  srno integer
);
create table mdbus_mflow_aga11 (
  description text collate nocase,
  startaddress text collate nocase,
  type text collate nocase,
  unit text collate nocase,
  aga text collate nocase,
  CFP boolean,
  RS integer,
  WS integer,
  MSD integer,
  srno integer
);

-- Read by position: the lengths of the two lists, then register numbers of the Modbus archive.
create table modbus_para (
  floatcount integer,
  boolcount integer,
  dailyPointer integer,
  hourlyPointer integer,
  dailyIndex integer,
  hourlyIndex integer,
  dailyData integer,
  hourlyData integer,
  model text collate nocase
);

create table sched_ParaList (
  RTU_Type text collate nocase,
  description text collate nocase,
  startaddress text collate nocase
);
create index sched_ParaList_type on sched_ParaList (RTU_Type);

create table modem (
  comtype text collate nocase,
  dialcommand text collate nocase
);

-- A relative device path starts at the application directory.
create table comports (
  portname text collate nocase,
  device text
);

create table baudrate (baudrate text collate nocase);

create table product (cmpcode text collate nocase);

create table product_model (
  cmpcode text collate nocase,
  modelno text collate nocase
);

create table calibSystemSignals (name text collate nocase);

create table logGen (logGen boolean);

-- What an owner may choose, by name. A missing row counts as delivered.
create table settings (
  name text primary key,
  value text,
  meaning text
) without rowid;

-- Users and the audit trail ----------------------------------------------------------------------------------------

create table users (
  userid text collate nocase,
  firstname text collate nocase,
  lastname text collate nocase,
  password text,                        -- scrambled; it compares exactly
  readsec integer,
  writesec integer,
  configstation boolean,
  tts boolean,
  gascomposition boolean,
  utility boolean,
  scheduler boolean,
  usermanager boolean,
  Archive boolean,
  Dailyreport boolean,
  trends boolean,
  historicaldata boolean,
  change boolean,
  logon boolean
);

create table TTS_table (LOG text collate nocase);

-- Mail and dial-out ------------------------------------------------------------------------------------------------

create table email_settings (
  "to" text collate nocase,
  cc text collate nocase,
  bcc text collate nocase,
  subject text collate nocase,
  message text collate nocase
);

-- An empty url means smtp://127.0.0.1:25.
create table mail_server (
  url text,
  user text,
  password text,
  sender text
);

-- Reports that are still to be mailed, each as it was made; who gets them is asked when they go.
create table unsent_mail (
  id integer primary key,
  made text,
  missing text,                         -- what the subject says behind its own words
  report text                           -- daily_report.rtf
);

create table dialout (
  Phone_Num integer,
  Ack boolean,
  Date_Time text
);

-- The archive of BSAP stations; NodeId is locationID. A record is known by its time stamp, a value by its record and its
-- column: the unique keys hold that, and a value is written without asking first. The index of the time stamps gives a
-- range of days in order; the values of a record lie side by side. -------------------------------------------------------

create table tArchiveTimeStamp (
  TimeStampId integer primary key,
  Time1 text,                           -- ISO; what a station's clock says need not be a time of day: "25:00:00"
  HistoryTypeId integer,
  NodeId integer,
  StreamNo integer
);
create unique index tArchiveTimeStamp_time on tArchiveTimeStamp (NodeId, StreamNo, HistoryTypeId, Time1);

create table tArchiveColumnHeader (
  ColumnId integer primary key,
  ColumnName text collate nocase,       -- as the station gives it, padded with blanks
  HistoryTypeId integer,
  NodeId integer,
  StreamNo integer
);
create unique index tArchiveColumnHeader_name on tArchiveColumnHeader (NodeId, StreamNo, HistoryTypeId, ColumnName);

create table tArchiveData (
  ColumnId integer,
  TimeStampId integer,
  HistoryTypeId integer,
  value1 double,
  primary key (TimeStampId, ColumnId)
) without rowid;

-- How far the store of an archive is complete: the newest record of its last whole download.
create table tArchiveMark (
  NodeId integer,
  StreamNo integer,
  HistoryTypeId integer,
  recordnumber integer,                 -- of the station, 0 to 65535
  Time1 text
);
create unique index tArchiveMark_archive on tArchiveMark (NodeId, StreamNo, HistoryTypeId);

-- The last download of the BSAP screens, for the reports; filled by position. All models but the TeleCorrector have theirs
-- in Daily_tf and Hourly_tf below. -------------------------------------------------------------------------------------

create table Daily (
  "'TimeDate'" text collate nocase,
  "'Globla_ID'" double,
  "'Local_ID'" double,
  "'PRESSURE(KG/CM2)'" double,
  "'TEMP(DEGC)'" double,
  "'FLOWRATE(SCMH)'" double,
  "'UNCOR_FLOWRATE(ACMH)'" double,
  "'VOL_TOTAL(SCM)'" double,
  "'VOL_TODAY(SCM)'" double,
  "'VOL_LASTDAY(SCM)'" double,
  "'UNCOR_TOTAL(SCM)'" double,
  "'UNCOR_TODAY(SCM)'" double,
  "'UNCOR_LASTDAY(SCM)'" double,
  "'BATTERY(VOLT)'" double,
  NodeName text collate nocase
);
create table Hourly (
  "'TimeDate'" text collate nocase,
  "'Globla_ID'" double,
  "'Local_ID'" double,
  "'PRESSURE(KG/CM2)'" double,
  "'TEMP(DEGC)'" double,
  "'FLOWRATE(SCMH)'" double,
  "'UNCOR_FLOWRATE(ACMH)'" double,
  "'VOL_TOTAL(SCM)'" double,
  "'VOL_TODAY(SCM)'" double,
  "'VOL_LASTDAY(SCM)'" double,
  "'UNCOR_TOTAL(SCM)'" double,
  "'UNCOR_TODAY(SCM)'" double,
  "'UNCOR_LASTDAY(SCM)'" double,
  "'BATTERY(VOLT)'" double,
  NodeName text collate nocase
);
create table Audit (
  TimeDate text collate nocase,
  Description text collate nocase,
  LocalID text collate nocase,
  GlobalID text collate nocase,
  NodeName text collate nocase
);

-- The archive of Modbus stations, a pair of tables a model family; the apostrophes belong to the names. ---------------

create table hourly_tc (
  "'TimeDate'" text collate nocase,
  "'PRESSURE(KG/CM2)'" double,
  "'TEMP(DEGC)'" double,
  "'FLOWRATE(SCMH)'" double,
  "'UNCOR_FLOWRATE(ACMH)'" double,
  "'VOL_TOTAL(SCM)'" double,
  "'VOL_TODAY(SCM)'" double,
  "'VOL_LASTDAY(SCM)'" double,
  "'UNCOR_TOTAL(SCM)'" double,
  "'UNCOR_TODAY(SCM)'" double,
  "'UNCOR_LASTDAY(SCM)'" double,
  "'BATTERY(VOLT)'" double,
  NodeName text collate nocase
);
create table daily_tc (
  "'TimeDate'" text collate nocase,
  "'PRESSURE(KG/CM2)'" double,
  "'TEMP(DEGC)'" double,
  "'FLOWRATE(SCMH)'" double,
  "'UNCOR_FLOWRATE(ACMH)'" double,
  "'VOL_TOTAL(SCM)'" double,
  "'VOL_TODAY(SCM)'" double,
  "'VOL_LASTDAY(SCM)'" double,
  "'UNCOR_TOTAL(SCM)'" double,
  "'UNCOR_TODAY(SCM)'" double,
  "'UNCOR_LASTDAY(SCM)'" double,
  "'BATTERY(VOLT)'" double,
  NodeName text collate nocase
);
create table hourly_tf (
  "'TimeDate'" text collate nocase,
  "'Globla_ID'" double,
  "'Local_ID'" double,
  "'DP(MMWC)'" double,
  "'PRESSURE(KG/CM2)'" double,
  "'TEMP(DEGC)'" double,
  "'FLOWRATE(SCMH)'" double,
  "'TOTAL(SCM)'" double,
  "'TODAY(SCM)'" double,
  "'LASTDAY(SCM)'" double,
  "'BATTERY(VOLT)'" double,
  NodeName text collate nocase
);
create table daily_tf (
  "'TimeDate'" text collate nocase,
  "'Globla_ID'" double,
  "'Local_ID'" double,
  "'DP(MMWC)'" double,
  "'PRESSURE(KG/CM2)'" double,
  "'TEMP(DEGC)'" double,
  "'FLOWRATE(SCMH)'" double,
  "'TOTAL(SCM)'" double,
  "'TODAY(SCM)'" double,
  "'LASTDAY(SCM)'" double,
  "'BATTERY(VOLT)'" double,
  NodeName text collate nocase
);
create table hourly_tf_mf (
  "'TimeDate'" text collate nocase,
  "'DP(MMWC)'" double,
  "'PRESSURE(KG/CM2)'" double,
  "'TEMP(DEGC)'" double,
  "'FLOWRATE(SCMH)'" double,
  "'TOTAL(SCM)'" double,
  "'THISHR(SCM)'" double,
  "'ENERGY ACCUM(GJ)'" double,
  "'ENERGY THISHR(GJ)'" double,
  "'BATTERY (VOLT)'" double,
  NodeName text collate nocase
);
create table hourly_tf_mf_7 (
  "'TimeDate'" text collate nocase,
  "'PRESSURE(KG/CM2)'" double,
  "'TEMP(DEGC)'" double,
  "'FLOWRATE(SCMH)'" double,
  "'TOTAL(SCM)'" double,
  "'THISHR(SCM)'" double,
  "'ENERGY ACCUM(GJ)'" double,
  "'ENERGY THISHR(GJ)'" double,
  "'BATTERY (VOLT)'" double,
  NodeName text collate nocase
);
create table daily_tf_mf (
  "'TimeDate'" text collate nocase,
  "'DP(MMWC)'" double,
  "'PRESSURE(KG/CM2)'" double,
  "'TEMP(DEGC)'" double,
  "'FLOWRATE(SCMH)'" double,
  "'TOTAL(SCM)'" double,
  "'TODAY(SCM)'" double,
  "'LASTDAY(SCM)'" double,
  "'ENERGY ACCUM(GJ)'" double,
  "'ENERGY TODAY(GJ)'" double,
  "'ENERGY LASTDAY(GJ)'" double,
  NodeName text collate nocase
);
create table daily_tf_mf_7 (
  "'TimeDate'" text collate nocase,
  "'PRESSURE(KG/CM2)'" double,
  "'TEMP(DEGC)'" double,
  "'FLOWRATE(SCMH)'" double,
  "'TOTAL(SCM)'" double,
  "'TODAY(SCM)'" double,
  "'LASTDAY(SCM)'" double,
  "'ENERGY ACCUM(GJ)'" double,
  "'ENERGY TODAY(GJ)'" double,
  "'ENERGY LASTDAY(GJ)'" double,
  NodeName text collate nocase
);

-- Before and after a change; fk_node_id is locationID -----------------------------------------------------------------

create table tblBeforeChange (
  fk_node_id integer,
  sr_no integer,
  list_no integer,
  parameter_name text collate nocase,
  para_value text collate nocase,
  unit text collate nocase
);
create index tblBeforeChange_list on tblBeforeChange (fk_node_id, list_no, sr_no);

create table tblAfterChange (
  fk_node_id integer,
  sr_no integer,
  list_no integer,
  parameter_name text collate nocase,
  para_value text collate nocase,
  unit text collate nocase
);
create index tblAfterChange_list on tblAfterChange (fk_node_id, list_no, sr_no);

create table tblDateTime (
  fk_node_id integer,
  before_date text collate nocase,
  after_date text collate nocase
);
create index tblDateTime_node on tblDateTime (fk_node_id);

create table tblListNo (
  list_no integer,
  fk_node_id integer
);
create index tblListNo_node on tblListNo (fk_node_id, list_no);

create table calibration (
  srno integer,
  name text collate nocase
);

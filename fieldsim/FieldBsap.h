#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include "fieldsim/Field.h"

namespace fieldsim {

// Within which a station of the field answers, in ms: well within the time that its record gives it.
std::uint32_t AnswerMs(const core::Station& station);

// The BSAP station of a register's record: the lists of its streams with what they keep of their past, its program and
// its transmitters. They are noted in `served`. Throws DatabaseError.
std::unique_ptr<BsapStation> MakeBsap(Field::Served& served, core::Database& dbconn, const FieldOptions& options,
                                      const std::function<Behaviour(int streamno)>& behaviour);

}  // namespace fieldsim

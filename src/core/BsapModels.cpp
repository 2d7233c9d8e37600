#include "core/BsapModels.h"

#include "core/Station.h"
#include "core/Text.h"

namespace core {

bool SpeaksBsap(const std::string& modelno, const std::string& protocol) {
    return IsCwModel(modelno) || SameText(modelno, "CW_Micro") || ProtocolOf(protocol) == Protocol::Bsap;
}

}  // namespace core

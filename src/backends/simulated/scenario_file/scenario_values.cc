#include "backends/simulated/scenario_file/scenario_values.h"

#include <charconv>
#include <initializer_list>
#include <limits>
#include <utility>

#include "platform/unicode.h"

namespace lanvoss::simulated {
namespace {

using platform::DevicePairingKinds;
using platform::DevicePairingResultStatus;

template <typename Enum>
Enum OneOf(const JsonValue& value, std::initializer_list<std::pair<const char*, Enum>> words) {
  std::string allowed;
  for (const auto& [word, meaning] : words) {
    if (value.Json() == word) {
      return meaning;
    }
    allowed += (allowed.empty() ? "\"" : ", \"") + std::string(word) + "\"";
  }
  value.Refuse("expected one of " + allowed);
}

}  // namespace

void Read(const JsonValue& value, bool& out) {
  if (!value.Json().is_boolean()) {
    value.Refuse("expected true or false");
  }
  out = value.Json().get<bool>();
}

void Read(const JsonValue& value, std::uint64_t& out) {
  if (!value.Json().is_number_unsigned()) {
    value.Refuse("expected a whole number");
  }
  out = value.Json().get<std::uint64_t>();
}

void ReadCount(const JsonValue& value, std::uint32_t& out) {
  std::uint64_t count = 0;
  Read(value, count);
  if (count > std::numeric_limits<std::uint32_t>::max()) {
    value.Refuse("expected a whole number below 2^32");
  }
  out = static_cast<std::uint32_t>(count);
}

void ReadHresult(const JsonValue& value, std::uint32_t& out) {
  constexpr std::size_t kLength = 10;
  const std::string text = value.Json().is_string() ? value.Json().get<std::string>() : "";
  const char* const end = text.data() + text.size();
  if (text.size() != kLength || !text.starts_with("0x") ||
      std::from_chars(text.data() + 2, end, out, 16).ptr != end) {
    value.Refuse("expected an error as \"0x80070490\"");
  }
}

void Read(const JsonValue& value, std::uint32_t& out) {
  if (value.Json() == "never") {
    out = kNever;
    return;
  }
  if (!value.Json().is_number_unsigned() || value.Json().get<std::uint64_t>() >= kNever) {
    value.Refuse("expected a whole number of milliseconds or \"never\"");
  }
  out = value.Json().get<std::uint32_t>();
}

void Read(const JsonValue& value, double& out) {
  const double share = value.Json().is_number() ? value.Json().get<double>() : -1;
  if (share < 0 || share > 1) {
    value.Refuse("expected a number from 0 to 1");
  }
  out = share;
}

void Read(const JsonValue& value, std::string& out) {
  if (!value.Json().is_string()) {
    value.Refuse("expected a string");
  }
  out = value.Json().get<std::string>();
}

void Read(const JsonValue& value, std::u16string& out) {
  if (!value.Json().is_string()) {
    value.Refuse("expected a string");
  }
  out = platform::Utf8ToUtf16(value.Json().get_ref<const std::string&>());
}

void Read(const JsonValue& value, std::optional<std::u16string>& out) {
  if (value.Json().is_null()) {
    out.reset();
  } else if (value.Json().is_string()) {
    Read(value, out.emplace());
  } else {
    value.Refuse("expected a string or null");
  }
}

void Read(const JsonValue& value, Outcome& out) {
  out = OneOf<Outcome>(value, {{"succeeds", Outcome::kSucceeds},
                               {"none", Outcome::kNone},
                               {"fails", Outcome::kFails},
                               {"cancelled", Outcome::kCancelled},
                               {"hangs", Outcome::kHangs}});
}

void Read(const JsonValue& value, Echo& out) {
  out = OneOf<Echo>(value, {{"reply", Echo::kReply},
                            {"late_reply", Echo::kLateReply},
                            {"other_identifier", Echo::kOtherIdentifier},
                            {"other_sequence", Echo::kOtherSequence},
                            {"other_address", Echo::kOtherAddress},
                            {"time_exceeded", Echo::kTimeExceeded},
                            {"time_exceeded_self", Echo::kTimeExceededSelf},
                            {"time_exceeded_cut", Echo::kTimeExceededCut},
                            {"truncated", Echo::kTruncated},
                            {"unrelated", Echo::kUnrelated}});
}

void Read(const JsonValue& value, Act& out) {
  out = OneOf<Act>(value, {{"appear", Act::kAppear},
                           {"disappear", Act::kDisappear},
                           {"rename", Act::kRename},
                           {"go_silent", Act::kGoSilent},
                           {"answer", Act::kAnswer},
                           {"drop_link", Act::kDropLink}});
}

void Read(const JsonValue& value, LinkEnd& out) {
  out = OneOf<LinkEnd>(value, {{"reported", LinkEnd::kReported},
                               {"repeated", LinkEnd::kRepeated},
                               {"silent", LinkEnd::kSilent},
                               {"stays_up", LinkEnd::kStaysUp},
                               {"stays_up_reported", LinkEnd::kStaysUpReported}});
}

void Read(const JsonValue& value, StopElsewhere& out) {
  out = OneOf<StopElsewhere>(
      value, {{"ignored", StopElsewhere::kIgnored}, {"refused", StopElsewhere::kRefused}});
}

void Read(const JsonValue& value, DevicePairingKinds& out) {
  using enum DevicePairingKinds;
  out =
      OneOf<DevicePairingKinds>(value, {{"None", None},
                                        {"ConfirmOnly", ConfirmOnly},
                                        {"DisplayPin", DisplayPin},
                                        {"ProvidePin", ProvidePin},
                                        {"ConfirmPinMatch", ConfirmPinMatch},
                                        {"ProvidePasswordCredential", ProvidePasswordCredential}});
}

void Read(const JsonValue& value, DevicePairingResultStatus& out) {
  using enum DevicePairingResultStatus;
  out = OneOf<DevicePairingResultStatus>(
      value, {{"Paired", Paired},
              {"NotReadyToPair", NotReadyToPair},
              {"NotPaired", NotPaired},
              {"AlreadyPaired", AlreadyPaired},
              {"ConnectionRejected", ConnectionRejected},
              {"TooManyConnections", TooManyConnections},
              {"HardwareFailure", HardwareFailure},
              {"AuthenticationTimeout", AuthenticationTimeout},
              {"AuthenticationNotAllowed", AuthenticationNotAllowed},
              {"AuthenticationFailure", AuthenticationFailure},
              {"NoSupportedProfiles", NoSupportedProfiles},
              {"ProtectionLevelCouldNotBeMet", ProtectionLevelCouldNotBeMet},
              {"AccessDenied", AccessDenied},
              {"InvalidCeremonyData", InvalidCeremonyData},
              {"PairingCanceled", PairingCanceled},
              {"OperationAlreadyInProgress", OperationAlreadyInProgress},
              {"RequiredHandlerNotRegistered", RequiredHandlerNotRegistered},
              {"RejectedByHandler", RejectedByHandler},
              {"RemoteDeviceHasAssociation", RemoteDeviceHasAssociation},
              {"Failed", Failed}});
}

}  // namespace lanvoss::simulated

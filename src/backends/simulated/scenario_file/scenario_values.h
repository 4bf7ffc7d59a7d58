// The single values of a scenario file: one Read for each type that a field can have.
//
// Each throws ScenarioError when the value is not what the field takes.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "backends/simulated/peer.h"
#include "backends/simulated/scenario_file/json_value.h"
#include "platform/wifi_direct.h"

namespace lanvoss::simulated {

void Read(const JsonValue& value, bool& out);
void Read(const JsonValue& value, std::uint64_t& out);
// A duration. All 32-bit fields are durations, except those read by ReadCount and ReadHresult.
void Read(const JsonValue& value, std::uint32_t& out);
void ReadCount(const JsonValue& value, std::uint32_t& out);
// As "0x80070490".
void ReadHresult(const JsonValue& value, std::uint32_t& out);
// A share, from 0 to 1: the only fraction there is.
void Read(const JsonValue& value, double& out);
// For people only, so it stays in UTF-8.
void Read(const JsonValue& value, std::string& out);
void Read(const JsonValue& value, std::u16string& out);
void Read(const JsonValue& value, std::optional<std::u16string>& out);

void Read(const JsonValue& value, Outcome& out);
void Read(const JsonValue& value, Echo& out);
void Read(const JsonValue& value, Act& out);
void Read(const JsonValue& value, LinkEnd& out);
void Read(const JsonValue& value, StopElsewhere& out);
// In the platform's words, as "ConfirmOnly" and "Paired".
void Read(const JsonValue& value, platform::DevicePairingKinds& out);
void Read(const JsonValue& value, platform::DevicePairingResultStatus& out);

}  // namespace lanvoss::simulated

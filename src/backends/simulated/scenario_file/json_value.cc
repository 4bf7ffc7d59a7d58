#include "backends/simulated/scenario_file/json_value.h"

#include <algorithm>

#include "backends/simulated/scenario_file/scenario_error.h"

namespace lanvoss::simulated {

void JsonValue::Refuse(const std::string& why) const { throw ScenarioError(path_ + ": " + why); }

void JsonValue::RefuseMember(std::string_view key, const std::string& why) const {
  throw ScenarioError(PathOf(key) + ": " + why);
}

void JsonValue::ReadMembers(
    std::initializer_list<std::pair<std::string_view, Reader>> readers) const {
  if (!json_->is_object()) {
    Refuse("expected an object");
  }
  for (const auto& [key, json] : json_->items()) {
    const auto reader =
        std::ranges::find(readers, key, [](const auto& known) { return known.first; });
    if (reader == readers.end()) {
      RefuseMember(key, "unknown key");
    }
    reader->second(JsonValue(json, PathOf(key), "."));
  }
}

void JsonValue::Require(std::string_view key) const {
  if (!Has(key)) {
    RefuseMember(key, "missing");
  }
}

void JsonValue::ReadElements(const Reader& reader) const {
  if (!json_->is_array()) {
    Refuse("expected an array");
  }
  for (std::size_t i = 0; i < json_->size(); ++i) {
    reader(JsonValue((*json_)[i], path_ + "[" + std::to_string(i) + "]", "."));
  }
}

std::string JsonValue::PathOf(std::string_view key) const {
  // As JSON has it, without its quotes: a key may hold anything, and the message is one line.
  const std::string quoted = nlohmann::json(key).dump();
  return path_ + joint_ + quoted.substr(1, quoted.size() - 2);
}

}  // namespace lanvoss::simulated

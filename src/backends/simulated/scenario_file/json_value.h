// A value of a scenario file, with the path that names it in messages.
#pragma once

#include <cstddef>
#include <functional>
#include <initializer_list>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <utility>

namespace lanvoss::simulated {

// Refers to a document that must outlive it. Every function throws ScenarioError for a value of
// another kind.
class JsonValue {
 public:
  JsonValue(const nlohmann::json& document, std::string file)
      : JsonValue(document, std::move(file), ": ") {}

  // "FILE: peers[1].pair_ms: WHY".
  [[noreturn]] void Refuse(const std::string& why) const;
  [[noreturn]] void RefuseMember(std::string_view key, const std::string& why) const;

  const nlohmann::json& Json() const { return *json_; }

  using Reader = std::function<void(const JsonValue& value)>;
  // Of an object: each member goes to the reader of its key; a key without one is refused.
  void ReadMembers(std::initializer_list<std::pair<std::string_view, Reader>> readers) const;
  bool Has(std::string_view key) const { return json_->contains(key); }
  void Require(std::string_view key) const;

  // Of an array.
  void ReadElements(const Reader& reader) const;

 private:
  JsonValue(const nlohmann::json& json, std::string path, const char* joint)
      : json_(&json), path_(std::move(path)), joint_(joint) {}

  std::string PathOf(std::string_view key) const;

  const nlohmann::json* json_;
  std::string path_;
  const char* joint_;  // the text between the path and a member's key
};

}  // namespace lanvoss::simulated

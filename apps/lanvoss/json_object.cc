#include "json_object.h"

#include <nlohmann/json.hpp>

#include "system.h"

namespace lanvoss::program {
namespace {

std::string Quoted(const std::string& text) {
  using nlohmann::json;
  constexpr int kOneLine = -1;
  return json(ToUtf8(text)).dump(kOneLine, ' ', false, json::error_handler_t::replace);
}

// Elements of an array or members of an object.
void Append(std::string& list, const std::string& json) {
  list += (list.empty() ? "" : ",") + json;
}

}  // namespace

JsonObject& JsonObject::AddText(std::string_view name, const std::string& text) {
  return Add(name, Quoted(text));
}

JsonObject& JsonObject::AddTexts(std::string_view name, const std::vector<std::string>& texts) {
  std::string list;
  for (const std::string& text : texts) {
    Append(list, Quoted(text));
  }
  return Add(name, "[" + list + "]");
}

JsonObject& JsonObject::AddNumber(std::string_view name, int number) {
  return Add(name, std::to_string(number));
}

JsonObject& JsonObject::AddNumbers(std::string_view name, const std::vector<std::string>& numbers) {
  std::string list;
  for (const std::string& number : numbers) {
    Append(list, number);
  }
  return Add(name, "[" + list + "]");
}

JsonObject& JsonObject::AddFlag(std::string_view name, bool flag) {
  return Add(name, flag ? "true" : "false");
}

JsonObject& JsonObject::AddObject(std::string_view name, const JsonObject& object) {
  return Add(name, object.Json());
}

JsonObject& JsonObject::AddObjects(std::string_view name, const std::vector<JsonObject>& objects) {
  std::string list;
  for (const JsonObject& object : objects) {
    Append(list, object.Json());
  }
  return Add(name, "[" + list + "]");
}

JsonObject& JsonObject::AddAll(const JsonObject& others) {
  if (!others.members_.empty()) {
    Append(members_, others.members_);
  }
  return *this;
}

JsonObject& JsonObject::Add(std::string_view name, const std::string& json) {
  Append(members_, "\"" + std::string(name) + "\":" + json);
  return *this;
}

}  // namespace lanvoss::program

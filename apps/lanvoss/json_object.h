// What --json writes: the members of an object, in their order.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace lanvoss::program {

class JsonObject {
 public:
  // Texts are in the system's code page. Invalid characters become replacement characters.
  JsonObject& AddText(std::string_view name, const std::string& text);
  JsonObject& AddTexts(std::string_view name, const std::vector<std::string>& texts);
  JsonObject& AddNumber(std::string_view name, int number);
  // The texts are numbers.
  JsonObject& AddNumbers(std::string_view name, const std::vector<std::string>& numbers);
  JsonObject& AddFlag(std::string_view name, bool flag);
  JsonObject& AddObject(std::string_view name, const JsonObject& object);
  JsonObject& AddObjects(std::string_view name, const std::vector<JsonObject>& objects);
  JsonObject& AddAll(const JsonObject& others);

  // The object, on one line.
  std::string Json() const { return "{" + members_ + "}"; }

 private:
  JsonObject& Add(std::string_view name, const std::string& json);

  std::string members_;  // as JSON
};

}  // namespace lanvoss::program

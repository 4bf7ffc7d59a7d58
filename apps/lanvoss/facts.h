// What --json tells: the members of an object, in their order.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace lanvoss::program {

class Facts {
 public:
  // Texts are in the system's code page; what is none in it gets replacement characters.
  Facts& AddText(std::string_view name, const std::string& text);
  Facts& AddTexts(std::string_view name, const std::vector<std::string>& texts);
  Facts& AddNumber(std::string_view name, int number);
  Facts& AddFlag(std::string_view name, bool flag);
  Facts& AddObjects(std::string_view name, const std::vector<Facts>& objects);
  Facts& AddAll(const Facts& others);

  // The object, on one line.
  std::string Json() const { return "{" + members_ + "}"; }

 private:
  Facts& Add(std::string_view name, const std::string& json);

  std::string members_;  // as JSON
};

}  // namespace lanvoss::program

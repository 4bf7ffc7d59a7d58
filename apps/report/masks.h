// Replaces names and addresses in texts that others will read.
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "log/notification.h"

namespace lanvoss::report {

// The same name or address gets the same mask in every text, different ones get different masks, so
// that a log can still be followed. A name that is met in one text is masked only in later texts,
// or when the same text is masked once more.
class Masks {
 public:
  // Names to mask in every text: of this machine and its user. Empty ones are ignored.
  void AddHost(const std::string& name) { Add(name, "host-"); }
  void AddUser(const std::string& name) { Add(name, "user-"); }

  // The lines of the library keep their wording.
  log::Notification Mask(const log::Notification& notification);

  // Addresses, known names, and the names of users' folders.
  std::string Mask(std::string_view text);

 private:
  struct Found {
    std::size_t length;
    std::string mask;
  };

  void Add(const std::string& name, const char* kind);
  std::string MaskOf(const std::string& original, const char* kind);
  std::string MaskLine(std::string_view message);
  std::string MaskField(std::string_view field, const std::string& value);
  std::optional<Found> FindAt(std::string_view text, std::size_t at);
  std::optional<Found> FindName(std::string_view text, std::size_t at) const;
  std::optional<Found> FindUser(std::string_view text, std::size_t at);
  std::optional<Found> FindAddress(std::string_view text, std::size_t at);
  std::string NextAddress(std::string_view kind);

  std::map<std::string, std::string, std::less<>> names_;      // to their masks
  std::map<std::string, std::string, std::less<>> addresses_;  // in small letters, to their masks
  std::map<std::string, int, std::less<>> counts_;             // of the masks of each kind
};

}  // namespace lanvoss::report

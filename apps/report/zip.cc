#include "report/zip.h"

#include <cstddef>
#include <cstdint>
#include <stdexcept>

namespace lanvoss::report {
namespace {

constexpr std::uint32_t kLocalHeader = 0x04034B50;
constexpr std::uint32_t kDirectoryEntry = 0x02014B50;
constexpr std::uint32_t kDirectoryEnd = 0x06054B50;
constexpr std::uint16_t kVersion = 20;                        // of the format, 2.0
constexpr std::uint16_t kMadeOnUnix = (3U << 8U) | kVersion;  // so that the mode counts
constexpr std::uint16_t kStored = 0;
constexpr std::uint32_t kMode = 0100644U << 16U;
constexpr std::uint64_t kMostBytes = UINT32_MAX;

void Put(std::string& out, std::uint32_t value, int bytes) {
  for (int i = 0; i < bytes; ++i) {
    out += static_cast<char>(value >> static_cast<unsigned>(8 * i) & 0xFFU);
  }
}
void Put16(std::string& out, std::size_t value) { Put(out, static_cast<std::uint32_t>(value), 2); }
void Put32(std::string& out, std::size_t value) { Put(out, static_cast<std::uint32_t>(value), 4); }

std::uint32_t ChecksumOf(const std::string& content) {
  constexpr std::uint32_t kPolynomial = 0xEDB88320;  // of the CRC-32, from its lowest bit on
  std::uint32_t checksum = ~0U;
  for (const char byte : content) {
    checksum ^= static_cast<unsigned char>(byte);
    for (int bit = 0; bit < 8; ++bit) {
      checksum = checksum >> 1U ^ ((checksum & 1U) != 0 ? kPolynomial : 0);
    }
  }
  return ~checksum;
}

// What the header before a member and its entry in the directory have in common.
std::string Description(const Member& member, const std::tm& time) {
  constexpr int kFirstYear = 80;  // 1980, from 1900
  std::string text;
  Put16(text, kVersion);
  Put16(text, 0);
  Put16(text, kStored);
  Put16(text,
        static_cast<std::size_t>((time.tm_hour << 11) | (time.tm_min << 5) | (time.tm_sec / 2)));
  Put16(text, static_cast<std::size_t>(((time.tm_year - kFirstYear) << 9) |
                                       ((time.tm_mon + 1) << 5) | time.tm_mday));
  Put32(text, ChecksumOf(member.content));
  Put32(text, member.content.size());
  Put32(text, member.content.size());
  Put16(text, member.name.size());
  Put16(text, 0);  // nothing more
  return text;
}

void PutEntry(std::string& out, const Member& member, const std::string& description,
              std::size_t place) {
  Put32(out, kDirectoryEntry);
  Put16(out, kMadeOnUnix);
  out += description;
  Put16(out, 0);  // no comment
  Put16(out, 0);  // on the first disk
  Put16(out, 0);
  Put32(out, kMode);
  Put32(out, place);
  out += member.name;
}

}  // namespace

std::string ZipOf(const std::vector<Member>& members, const std::tm& localTime) {
  std::string archive;
  std::string directory;
  for (const Member& member : members) {
    const std::string description = Description(member, localTime);
    PutEntry(directory, member, description, archive.size());
    Put32(archive, kLocalHeader);
    archive += description;
    archive += member.name;
    archive += member.content;
  }
  const std::size_t place = archive.size();
  archive += directory;
  if (archive.size() > kMostBytes) {
    throw std::runtime_error("it would have more than 4 GB");
  }
  Put32(archive, kDirectoryEnd);
  Put32(archive, 0);  // one disk
  Put16(archive, members.size());
  Put16(archive, members.size());
  Put32(archive, directory.size());
  Put32(archive, place);
  Put16(archive, 0);  // no comment
  return archive;
}

}  // namespace lanvoss::report

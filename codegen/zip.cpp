#include <array>
#include <cstdint>

#include "pxrom/codegen.h"

namespace pxrom_codegen {

namespace {

/// The checksum of ISO 3309, bit by bit in a table of bytes.
std::uint32_t Crc32(const std::string& bytes) {
  std::array<std::uint32_t, 256> table{};
  for (std::uint32_t i = 0; i < table.size(); ++i) {
    std::uint32_t rest = i;
    for (int bit = 0; bit < 8; ++bit) rest = (rest >> 1U) ^ ((rest & 1U) * 0xEDB88320U);
    table[i] = rest;
  }
  std::uint32_t crc = 0xFFFFFFFFU;
  for (const char c : bytes) {
    crc = (crc >> 8U) ^ table[(crc ^ static_cast<unsigned char>(c)) & 0xFFU];
  }
  return ~crc;
}

/// Little-endian numbers, each with its count of bytes.
void Put(std::string& out, std::uint64_t value, unsigned bytes) {
  for (unsigned i = 0; i < bytes; ++i) out += static_cast<char>((value >> (8U * i)) & 0xFFU);
}

}  // namespace

// The layout is that of PKWARE's application note, sections 4.3.7, 4.3.12 and 4.3.16.
std::string ZipOf(const std::vector<ArchiveFile>& files) {
  constexpr std::uint64_t kVersion = 20;
  constexpr std::uint64_t kMadeOnUnix = 0x0314;
  constexpr std::uint64_t kFirstOfJanuary1980 = 0x0021;
  constexpr std::uint64_t kPermissions = 0100644U << 16U;
  std::string archive;
  std::string directory;
  for (const ArchiveFile& file : files) {
    const std::size_t offset = archive.size();
    std::string common;
    Put(common, kVersion, 2);
    Put(common, 0, 2 + 2 + 2);  // flags, stored, midnight
    Put(common, kFirstOfJanuary1980, 2);
    Put(common, Crc32(file.content), 4);
    Put(common, file.content.size(), 4);
    Put(common, file.content.size(), 4);
    Put(common, file.path.size(), 2);
    Put(common, 0, 2);  // no extra field
    Put(archive, 0x04034B50, 4);
    archive += common + file.path + file.content;
    Put(directory, 0x02014B50, 4);
    Put(directory, kMadeOnUnix, 2);
    directory += common;
    Put(directory, 0, 2 + 2 + 2);  // no comment, first disk, binary
    Put(directory, kPermissions, 4);
    Put(directory, offset, 4);
    directory += file.path;
  }
  const std::size_t start = archive.size();
  archive += directory;
  Put(archive, 0x06054B50, 4);
  Put(archive, 0, 2 + 2);  // first disk
  Put(archive, files.size(), 2);
  Put(archive, files.size(), 2);
  Put(archive, directory.size(), 4);
  Put(archive, start, 4);
  Put(archive, 0, 2);  // no comment
  return archive;
}

}  // namespace pxrom_codegen

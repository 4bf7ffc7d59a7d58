// The core's file operations; the cache file is the only file on which it uses these. Each fails
// in the way with the largest effect: a transfer does half its work, a close does all of it. The
// system opens files, and NthRun makes that fail.
#include <cstddef>
#include <cstdio>

#include "failing_core.h"

using lanvoss::nth::Failure;
using lanvoss::nth::IsDue;

extern "C" {

int RealClose(std::FILE* file) __asm__("__real_fclose");
int RealSeek(std::FILE* file, long offset, int origin) __asm__("__real_fseek");
long RealTell(std::FILE* file) __asm__("__real_ftell");
std::size_t RealRead(void* to, std::size_t size, std::size_t count,
                     std::FILE* file) __asm__("__real_fread");
std::size_t RealWrite(const void* from, std::size_t size, std::size_t count,
                      std::FILE* file) __asm__("__real_fwrite");

int FailingClose(std::FILE* file) __asm__("__wrap_fclose");
int FailingSeek(std::FILE* file, long offset, int origin) __asm__("__wrap_fseek");
long FailingTell(std::FILE* file) __asm__("__wrap_ftell");
std::size_t FailingRead(void* to, std::size_t size, std::size_t count,
                        std::FILE* file) __asm__("__wrap_fread");
std::size_t FailingWrite(const void* from, std::size_t size, std::size_t count,
                         std::FILE* file) __asm__("__wrap_fwrite");

int FailingClose(std::FILE* file) {
  const int result = RealClose(file);
  return IsDue(Failure::kFile) ? EOF : result;
}

int FailingSeek(std::FILE* file, long offset, int origin) {
  return IsDue(Failure::kFile) ? -1 : RealSeek(file, offset, origin);
}

long FailingTell(std::FILE* file) { return IsDue(Failure::kFile) ? -1 : RealTell(file); }

std::size_t FailingRead(void* to, std::size_t size, std::size_t count, std::FILE* file) {
  return RealRead(to, size, IsDue(Failure::kFile) ? count / 2 : count, file);
}

// The compiler also makes a call of it from text that goes to standard output.
std::size_t FailingWrite(const void* from, std::size_t size, std::size_t count, std::FILE* file) {
  const bool fails = file != stdout && IsDue(Failure::kFile);
  return RealWrite(from, size, fails ? count / 2 : count, file);
}

}  // extern "C"

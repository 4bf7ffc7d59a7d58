#include "input.h"

#include <array>
#include <io.h>
#include <windows.h>

#include "notice.h"

namespace lanvoss::program {
namespace {

constexpr DWORD kReadLength = 4096;

// A pipe cannot be waited for, only looked into. One whose other end is closed counts as one with
// something to read: its end.
bool PipeHasInput(HANDLE pipe) {
  DWORD length = 0;
  if (PeekNamedPipe(pipe, nullptr, 0, nullptr, &length, nullptr) == FALSE || length > 0) {
    return true;
  }
  Sleep(kNoticeMs);
  return false;
}

bool InputIsThere(HANDLE input) {
  DWORD mode = 0;
  if (GetConsoleMode(input, &mode) != FALSE) {
    return WaitForSingleObject(input, kNoticeMs) == WAIT_OBJECT_0;
  }
  return GetFileType(input) != FILE_TYPE_PIPE || PipeHasInput(input);
}

}  // namespace

Input ReadInput(int file, std::string& text) {
  const auto input = reinterpret_cast<HANDLE>(_get_osfhandle(file));
  if (!InputIsThere(input)) {
    return Input::kNoneYet;
  }
  std::array<char, kReadLength> buffer{};
  DWORD length = 0;
  SetLastError(ERROR_SUCCESS);
  if (ReadFile(input, buffer.data(), kReadLength, &length, nullptr) == FALSE || length == 0) {
    // Ctrl-C ends the reading of a console's line, but not the input.
    return GetLastError() == ERROR_OPERATION_ABORTED ? Input::kNoneYet : Input::kEnd;
  }
  text.append(buffer.data(), length);
  return Input::kMore;
}

}  // namespace lanvoss::program

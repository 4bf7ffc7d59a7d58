#include "property_list.h"

#include <array>

#include "backends/windows/com_pointer.h"
#include "backends/windows/winrt_string.h"
#include "identity.h"
#include "platform/error.h"

namespace lanvoss::fake_winrt {
namespace {

using Names = std::vector<std::u16string>;
using Iterable = abi::IIterable<HSTRING>;
using Iterator = abi::IIterator<HSTRING>;

// How many texts are asked for at once. A list must stop at this, and continue from here.
constexpr UINT32 kBatch = 2;

windows::ComPointer<Iterator> NewIterator(Session& session,
                                          const windows::ComPointer<Iterable>& list) {
  auto iterator = windows::Get<Iterator>(list, &Iterable::First);
  CheckIdentity(session, "iterator", *iterator.Get(), abi::kIid<Iterator>);
  return iterator;
}

Names ReadOneByOne(const windows::ComPointer<Iterator>& iterator) {
  Names names;
  bool has = windows::Read<boolean>(iterator, &Iterator::get_HasCurrent) != 0;
  while (has) {
    names.push_back(windows::ReadText(iterator, &Iterator::get_Current));
    has = windows::Read<boolean>(iterator, &Iterator::MoveNext) != 0;
  }
  return names;
}

Names ReadInBatches(const windows::ComPointer<Iterator>& iterator) {
  Names names;
  std::array<HSTRING, kBatch> batch{};
  UINT32 read = kBatch;
  while (read == kBatch) {
    windows::Check(iterator->GetMany(kBatch, batch.data(), &read));
    for (UINT32 at = 0; at < read; ++at) {
      names.push_back(windows::WinrtString::Adopt(batch[at]).Text());
    }
  }
  return names;
}

}  // namespace

std::vector<std::u16string> ReadProperties(Session& session, Iterable* list) {
  if (list == nullptr) {
    RaiseNull(session, "property list");
  }
  CheckIdentity(session, "property list", *list, abi::kIid<Iterable>);
  const windows::ComPointer<Iterable> held(list);
  Names names = ReadOneByOne(NewIterator(session, held));
  if (ReadInBatches(NewIterator(session, held)) != names) {
    session.AddFault("property list: reads differently in batches");
  }
  return names;
}

}  // namespace lanvoss::fake_winrt

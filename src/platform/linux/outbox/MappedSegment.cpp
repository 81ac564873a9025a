#include "platform/linux/outbox/MappedSegment.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstring>

namespace kesu {
namespace {

// Words that every machine stores at once. Entries begin at multiples of eight bytes, so that all words are aligned.
using Word = std::uintptr_t;

template <typename Integer>
std::atomic_ref<Integer> atomicAt(char* at) {
  return std::atomic_ref<Integer>(*reinterpret_cast<Integer*>(at));
}

void storeWord(char* to, const char* from, std::size_t bytes) {
  Word word = 0;
  std::memcpy(&word, from, bytes);
  atomicAt<Word>(to).store(word, std::memory_order_relaxed);
}

void loadWord(char* to, char* from, std::size_t bytes) {
  const Word word = atomicAt<Word>(from).load(std::memory_order_relaxed);
  std::memcpy(to, &word, bytes);
}

// As memcpy(), but no data race with touch(), which writes what is there already. The rest of the last word becomes
// zero.
void copyIn(char* to, const char* from, std::size_t bytes) {
  const std::size_t whole = bytes - bytes % sizeof(Word);
  for (std::size_t at = 0; at < whole; at += sizeof(Word)) {
    storeWord(to + at, from + at, sizeof(Word));
  }
  if (whole < bytes) {
    storeWord(to + whole, from + whole, bytes - whole);
  }
}

void copyOut(char* to, char* from, std::size_t bytes) {
  const std::size_t whole = bytes - bytes % sizeof(Word);
  for (std::size_t at = 0; at < whole; at += sizeof(Word)) {
    loadWord(to + at, from + at, sizeof(Word));
  }
  if (whole < bytes) {
    loadWord(to + whole, from + whole, bytes - whole);
  }
}

}  // namespace

std::unique_ptr<MappedSegment> MappedSegment::map(int fd) {
  void* base = ::mmap(nullptr, kSegmentBytes, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
  return std::unique_ptr<MappedSegment>(base == MAP_FAILED ? nullptr : new MappedSegment(static_cast<char*>(base)));
}

MappedSegment::~MappedSegment() {
  ::munmap(base_, kSegmentBytes);
}

void MappedSegment::write(std::uint32_t offset, const EntryHeader& header, std::string_view bytes) {
  char* const at = base_ + offset;
  copyIn(at + sizeof(EntryHeader), bytes.data(), bytes.size());
  copyIn(at + offsetof(EntryHeader, sequence), reinterpret_cast<const char*>(&header.sequence),
         sizeof(EntryHeader) - offsetof(EntryHeader, sequence));
  atomicAt<std::uint32_t>(at + offsetof(EntryHeader, mark)).store(header.mark, std::memory_order_relaxed);
  // Last, so that a process killed on the way leaves nothing but an end.
  atomicAt<std::uint32_t>(at).store(header.kindAndLength, std::memory_order_release);
}

EntryHeader MappedSegment::read(std::uint32_t offset, std::string& bytes) const {
  EntryHeader header;
  copyOut(reinterpret_cast<char*>(&header), base_ + offset, sizeof(header));
  bytes.resize(std::min<std::size_t>(header.length(), kSegmentBytes - offset - sizeof(header)));
  copyOut(bytes.data(), base_ + offset + sizeof(header), bytes.size());
  return header;
}

bool MappedSegment::mark(std::uint32_t offset, std::uint32_t mark) {
  auto present = atomicAt<std::uint32_t>(base_ + offset + offsetof(EntryHeader, mark));
  return present.exchange(mark, std::memory_order_relaxed) != mark;
}

void MappedSegment::touch(std::uint32_t from, std::uint32_t to) {
  static const auto pageBytes = static_cast<std::uint32_t>(::sysconf(_SC_PAGESIZE));
  const volatile std::uint32_t nothing = 0;  // Compilers turn a plain "or 0" into a load, which allocates no page.
  for (std::uint32_t at = from - from % pageBytes; at < to; at += pageBytes) {
    atomicAt<std::uint32_t>(base_ + at).fetch_or(nothing, std::memory_order_relaxed);
  }
}

}  // namespace kesu

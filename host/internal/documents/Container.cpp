#include "host/Container.h"

#include <algorithm>
#include <array>
#include <optional>

namespace cells::host {
namespace {

// A byte above 127, line ends of both kinds and an end-of-file mark: a transfer as text changes it.
constexpr std::string_view kMark("\x89"
                                 "CVS\r\n\x1A\n",
                                 8);
constexpr std::size_t kHead = 12, kSectionHead = 20, kBeforeChecksum = 16;

void PutU32(std::string & bytes, std::uint32_t value) {
    for (int i = 0; i < 4; ++i) bytes += char(value >> (8 * i));
}

std::uint32_t U32At(std::string_view bytes, std::size_t at) {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < 4; ++i)
        value |= std::uint32_t(static_cast<unsigned char>(bytes[at + i])) << (8 * i);
    return value;
}

std::array<std::uint32_t, 256> MakeChecksumTable() {
    std::array<std::uint32_t, 256> table;
    for (std::uint32_t i = 0; i < 256; ++i) {
        std::uint32_t value = i;
        for (int bit = 0; bit < 8; ++bit) value = value >> 1 ^ (value & 1 ? 0xEDB88320 : 0);
        table[i] = value;
    }
    return table;
}

bool IsTag(std::uint32_t tag) {
    for (SectionTag known :
         {SectionTag::kBook, SectionTag::kProperties, SectionTag::kStrings, SectionTag::kSheet,
          SectionTag::kCells, SectionTag::kSheetEnd, SectionTag::kPending, SectionTag::kDone})
        if (tag == std::uint32_t(known)) return true;
    return false;
}

// The section at an offset, if one stands there whole; takes the bytes summed from the budget.
std::optional<Section> SectionAt(std::string_view document, std::size_t at,
                                 std::uint64_t & budget) {
    if (at > document.size() || document.size() - at < kSectionHead) return std::nullopt;
    std::string_view const head = document.substr(at, kSectionHead);
    std::uint32_t const length = U32At(head, 12);
    if (!IsTag(U32At(head, 0)) || length > document.size() - at - kSectionHead) return std::nullopt;
    if (length > budget) return std::nullopt;
    budget -= length;
    std::string_view const payload = document.substr(at + kSectionHead, length);
    if (Checksum(payload, Checksum(head.substr(0, kBeforeChecksum))) != U32At(head, 16))
        return std::nullopt;
    return Section{SectionTag(U32At(head, 0)), U32At(head, 4), U32At(head, 8), at, payload};
}

void CheckHead(std::string_view document, std::vector<Damage> & damages) {
    if (document.substr(0, kMark.size()) != kMark)
        damages.push_back({0, "this is no document of cvcells"});
    else if (document.size() < kHead)
        damages.push_back({document.size(), "the document ends within its head"});
    else if (U32At(document, kMark.size()) != kDocumentVersion)
        damages.push_back({kMark.size(), "the document has version " +
                                             std::to_string(U32At(document, kMark.size())) +
                                             ", which is unknown"});
}

// Whether the last section tells the number of those before it.
void CheckEnd(std::string_view document, Container & container) {
    auto const & sections = container.sections;
    bool const isDone = !sections.empty() && sections.back().tag == SectionTag::kDone;
    if (!isDone)
        container.damages.push_back({document.size(), "the document ends too early"});
    else if (sections.back().payload.size() != 4 ||
             U32At(sections.back().payload, 0) != sections.size() - 1)
        container.damages.push_back({sections.back().offset, "sections are missing"});
}

} // namespace

std::uint32_t Checksum(std::string_view bytes, std::uint32_t before) {
    static std::array<std::uint32_t, 256> const table = MakeChecksumTable();
    std::uint32_t sum = ~before;
    for (char byte : bytes) sum = sum >> 8 ^ table[(sum ^ static_cast<unsigned char>(byte)) & 0xFF];
    return ~sum;
}

ContainerWriter::ContainerWriter(Sink sink) : m_Sink(std::move(sink)) {
    std::string head(kMark);
    PutU32(head, kDocumentVersion);
    m_Sink(head);
}

void ContainerWriter::Add(SectionTag tag, std::uint32_t sheet, std::uint32_t part,
                          std::string_view payload) {
    std::string head;
    PutU32(head, std::uint32_t(tag));
    PutU32(head, sheet);
    PutU32(head, part);
    PutU32(head, std::uint32_t(payload.size()));
    PutU32(head, Checksum(payload, Checksum(head)));
    m_Sink(head);
    m_Sink(payload);
    ++m_Count;
}

void ContainerWriter::Finish() {
    std::string count;
    PutU32(count, m_Count);
    Add(SectionTag::kDone, kNoSheet, 0, count);
}

// Behind damage the next section is looked for byte by byte; the budget bounds the sums on the way.
Container ReadContainer(std::string_view document) {
    Container container;
    CheckHead(document, container.damages);
    std::uint64_t budget = 8 * std::uint64_t(document.size());
    std::size_t at = std::min(kHead, document.size());
    while (at < document.size()) {
        std::size_t const start = at;
        std::optional<Section> section;
        while (at < document.size() && !(section = SectionAt(document, at, budget))) ++at;
        if (at > start)
            container.damages.push_back({start, "damaged bytes: " + std::to_string(at - start)});
        if (!section) break;
        container.sections.push_back(*section);
        at += kSectionHead + section->payload.size();
    }
    CheckEnd(document, container);
    return container;
}

} // namespace cells::host

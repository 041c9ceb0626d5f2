#include "host/Properties.h"

#include "platform/CArchive.h"
#include "platform/COleDateTime.h"
#include "platform/Clock.h"
#include "platform/Exceptions.h"
#include "platform/Utf.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <stdexcept>

namespace cells::host {
namespace {

using ATL::COleDateTime;

enum class Form { kText, kCount, kMoment, kLength };

struct Row {
    Property property;
    std::string_view name;
    Form form;
};

constexpr Row kRows[] = {
    {Property::kTitle, "title", Form::kText},
    {Property::kSubject, "subject", Form::kText},
    {Property::kAuthor, "author", Form::kText},
    {Property::kKeywords, "keywords", Form::kText},
    {Property::kComments, "comments", Form::kText},
    {Property::kCreated, "created", Form::kMoment},
    {Property::kSaved, "saved", Form::kMoment},
    {Property::kPrinted, "printed", Form::kMoment},
    {Property::kEditTime, "edit-time", Form::kLength},
    {Property::kRevision, "revision", Form::kCount},
    {Property::kCharacters, "characters", Form::kCount},
    {Property::kWords, "words", Form::kCount},
    {Property::kPages, "pages", Form::kCount},
    {Property::kMergeRecord, "merge-record", Form::kCount},
    {Property::kMergeCount, "merge-count", Form::kCount},
    {Property::kFileName, "file-name", Form::kText},
    {Property::kFileSize, "file-size", Form::kCount},
};

Row const * RowOf(Property property) {
    auto const row = std::find_if(std::begin(kRows), std::end(kRows),
                                  [&](Row const & r) { return r.property == property; });
    return row == std::end(kRows) ? nullptr : row;
}

bool IsOfTheFile(Property property) {
    return property == Property::kFileName || property == Property::kFileSize;
}

constexpr double kMostCount = 4294967295.0;
constexpr double kMostDays = 1e6;

// "1:2:3" or "1:2" into hours, minutes and seconds; false for anything else.
bool ReadClock(std::string_view text, int (&parts)[3]) {
    char const *at = text.data(), *const end = at + text.size();
    for (int i = 0; i < 3; ++i) {
        auto const read = std::from_chars(at, end, parts[i]);
        if (read.ec != std::errc() || parts[i] < 0 || (i > 0 && parts[i] > 59)) return false;
        at = read.ptr;
        if (at == end) return i > 0;
        if (*at++ != ':') return false;
    }
    return false;
}

// "2026-03-05", with a time of the day after a blank or "T".
bool ReadMoment(std::string_view text, double & days) {
    int date[3], clock[3] = {};
    char const *at = text.data(), *const end = at + text.size();
    for (int i = 0; i < 3; ++i) {
        auto const read = std::from_chars(at, end, date[i]);
        if (read.ec != std::errc()) return false;
        at = read.ptr;
        if (i < 2 && (at == end || *at++ != '-')) return false;
    }
    if (at != end && *at != ' ' && *at != 'T') return false;
    if (at != end && (!ReadClock({at + 1, std::size_t(end - at - 1)}, clock) || clock[0] > 23))
        return false;
    if (date[0] < 1900 || date[0] > 2071 || date[1] < 1 || date[1] > 12) return false;
    COleDateTime const moment(date[0], date[1], date[2], clock[0], clock[1], clock[2]);
    days = moment.m_dt;
    return date[2] >= 1 && moment.GetDay() == date[2] && moment.GetMonth() == date[1];
}

bool ReadNumber(Form form, std::string_view text, double & number) {
    if (form == Form::kMoment) return ReadMoment(text, number);
    if (form == Form::kLength) {
        int clock[3] = {};
        if (!ReadClock(text, clock)) return false;
        number =
            COleDateTime::kBeginOf1900 + (clock[0] * 3600.0 + clock[1] * 60 + clock[2]) / 86400;
        return number < kMostDays;
    }
    unsigned count;
    auto const read = std::from_chars(text.data(), text.data() + text.size(), count);
    number = count;
    return read.ec == std::errc() && read.ptr == text.data() + text.size();
}

// Whether a number from a file is one that can be set.
bool IsSound(Form form, double number) {
    if (form == Form::kCount)
        return number >= 0 && number <= kMostCount && number == std::floor(number);
    return std::fabs(number) < kMostDays;
}

std::string Print(Form form, double number) {
    char text[64];
    if (form == Form::kCount) {
        std::snprintf(text, sizeof text, "%.0f", number);
    } else if (form == Form::kLength) {
        long long const seconds = std::llround((number - COleDateTime::kBeginOf1900) * 86400);
        std::snprintf(text, sizeof text, "%lld:%02lld:%02lld", seconds / 3600, seconds / 60 % 60,
                      seconds % 60);
    } else {
        COleDateTime const moment(number);
        std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d", moment.GetYear(),
                      moment.GetMonth(), moment.GetDay(), moment.GetHour(), moment.GetMinute(),
                      moment.GetSecond());
    }
    return text;
}

} // namespace

std::optional<Property> FindProperty(std::string_view name) {
    CString const asked = FromUtf8(name);
    for (Row const & row : kRows)
        if (FromUtf8(row.name).CompareNoCase(asked) == 0) return row.property;
    return std::nullopt;
}

std::string_view NameOf(Property property) {
    Row const * const row = RowOf(property);
    return row ? row->name : std::string_view();
}

std::vector<Property> const & AllProperties() {
    static std::vector<Property> const all = [] {
        std::vector<Property> properties;
        for (Row const & row : kRows) properties.push_back(row.property);
        return properties;
    }();
    return all;
}

void Properties::Set(Property property, std::string_view text) {
    Row const * const row = RowOf(property);
    if (!row) throw std::invalid_argument("no such property");
    if (text.empty()) return Remove(property);
    if (row->form == Form::kText) {
        m_Values[property] = FromUtf8(text);
        return;
    }
    double number;
    if (!ReadNumber(row->form, text, number))
        throw std::invalid_argument(std::string(row->name) + " cannot be \"" + std::string(text) +
                                    "\"");
    m_Values[property] = number;
}

void Properties::SetNow(Property property) {
    LocalTime const now = Now();
    m_Values[property] =
        COleDateTime(now.year, now.month, now.day, now.hour, now.minute, now.second).m_dt;
}

std::string Properties::Text(Property property) const {
    auto const found = m_Values.find(property);
    Row const * const row = RowOf(property);
    if (!row || found == m_Values.end()) return {};
    if (auto const * text = std::get_if<CString>(&found->second)) return ToUtf8(*text);
    return Print(row->form, std::get<double>(found->second));
}

bool Properties::Give(Property property, CString & text) const {
    auto const found = m_Values.find(property);
    auto const * value = found == m_Values.end() ? nullptr : std::get_if<CString>(&found->second);
    if (value) text = *value;
    return value != nullptr;
}

bool Properties::Give(Property property, double & number) const {
    auto const found = m_Values.find(property);
    auto const * value = found == m_Values.end() ? nullptr : std::get_if<double>(&found->second);
    if (value) number = *value;
    return value != nullptr;
}

bool Properties::IsEmpty() const {
    return std::all_of(m_Values.begin(), m_Values.end(),
                       [](auto const & entry) { return IsOfTheFile(entry.first); });
}

void Properties::Write(CArchive & ar) const {
    auto const kept = std::count_if(m_Values.begin(), m_Values.end(),
                                    [](auto const & entry) { return !IsOfTheFile(entry.first); });
    ar << std::uint32_t(kept);
    for (auto const & [property, value] : m_Values) {
        if (IsOfTheFile(property)) continue;
        ar << uchar(property);
        if (auto const * text = std::get_if<CString>(&value))
            ar << *text;
        else
            ar << std::get<double>(value);
    }
}

void Properties::Read(CArchive & ar) {
    std::uint32_t count;
    ar >> count;
    for (; count > 0; --count) {
        uchar number;
        ar >> number;
        Row const * const row = RowOf(Property(number));
        if (!row || IsOfTheFile(row->property))
            throw CArchiveException(CArchiveException::badSchema);
        if (row->form == Form::kText) {
            CString text;
            ar >> text;
            m_Values[row->property] = text;
            continue;
        }
        double value;
        ar >> value;
        if (!IsSound(row->form, value)) throw CArchiveException(CArchiveException::badSchema);
        m_Values[row->property] = value;
    }
}

} // namespace cells::host

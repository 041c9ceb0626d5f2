// From one part of a custom format text to its sections.
#include "format/CCNumberFormat.h"
#include "format/CFormatSection.h"
#include "platform/Text.h"

#include <algorithm>
#include <iterator>

namespace cells::internal {
namespace {

constexpr int kLargestDenominator = 999999999;

bool IsLetter(wchar_t unit, wchar_t capital) { return ToUpper(unit) == capital; }

class Compiler {
public:
    explicit Compiler(std::wstring_view text) : m_Text(text) {}

    std::unique_ptr<CFormatSectionList> Compile() {
        m_List = std::make_unique<CFormatSectionList>();
        if (!TakeGeneral())
            while (m_At < m_Text.size()) TakeOne();
        MergeEqualNeighbours();
        bool const isDate = m_List->type == C_NF_TIME || m_List->type == C_NF_DATE;
        if (isDate) TurnSlashesIntoText();
        auto const slash = FindType(Sections().begin(), CFormatSection::kFraction);
        if (slash != Sections().end())
            MakeFraction(slash);
        else
            MakeTimes();
        CountPlaceholders();
        return std::move(m_List);
    }

private:
    using Section = std::unique_ptr<CFormatSection>;
    using Position = std::list<Section>::iterator;

    std::list<Section> & Sections() { return m_List->sections; }

    template <typename T, typename... Parts>
    void Add(Parts &&... parts) {
        Sections().push_back(std::make_unique<T>(std::forward<Parts>(parts)...));
    }
    void AddText(std::wstring_view text) { Add<CFormatTextSection>(CString(text)); }
    template <typename Left, typename Right>
    void AddDigit() {
        if (m_Left)
            Add<Left>(1);
        else
            Add<Right>(1);
    }
    template <typename T, typename... Parts>
    void AddDatePart(uchar type, Parts... parts) {
        Add<T>(1, parts...);
        m_List->type = type;
    }

    // The word General is no text: the number prints as it comes, after the sign of a part that
    // was derived for negative numbers.
    bool TakeGeneral() {
        std::wstring_view word = m_Text;
        bool const negative = !word.empty() && word.front() == L'-';
        if (negative) word.remove_prefix(1);
        if (CString(word).CompareNoCase(L"General") != 0) return false;
        if (negative) AddText(L"-");
        Add<CGeneralSection>();
        return true;
    }

    void TakeOne() {
        wchar_t const unit = m_Text[m_At++];
        switch (unit) {
        case L'"': {
            std::size_t const end = std::min(m_Text.find(L'"', m_At), m_Text.size());
            AddText(m_Text.substr(m_At, end - m_At));
            m_At = std::min(end + 1, m_Text.size());
            return;
        }
        case L'#':
            return AddDigit<CLSignificantDigitSection, CRSignificantDigitSection>();
        case L'0':
            m_AfterSlash = false;
            return AddDigit<CLInSignificantDigitSection, CRInSignificantDigitSection>();
        case L'?':
            m_AfterSlash = false;
            return AddDigit<CLInSignificantSpaceDigitSection, CRInSignificantSpaceDigitSection>();
        case L'%':
            m_List->type = C_NF_PERCENT;
            return AddText(L"%");
        case L'*':
            if (m_At < m_Text.size()) ++m_At;
            return;
        case L',':
            Sections().push_front(std::make_unique<CDigitGroupingSection>());
            return;
        case L'.':
            if (!m_Left || m_List->type == C_NF_DATE) return AddText(L".");
            m_Left = false;
            return Add<CCommaSection>();
        case L'/':
            m_List->type = C_NF_FRACTION;
            m_AfterSlash = true;
            return Add<CFormatFractionSection>();
        case L'[':
            return TakeBracket();
        case L'\\':
            if (m_At < m_Text.size()) AddText(m_Text.substr(m_At++, 1));
            return;
        case L'_':
            if (m_At < m_Text.size()) Add<CSpaceSection>(m_Text[m_At++]);
            return;
        default:
            return TakeLetterOrDigit(unit);
        }
    }

    void TakeLetterOrDigit(wchar_t unit) {
        switch (unit) {
        case L'd':
        case L'D':
            return AddDatePart<CDaySection>(C_NF_DATE);
        case L'm':
        case L'M':
            return AddDatePart<CMonthSection>(C_NF_DATE);
        case L'y':
        case L'Y':
            return AddDatePart<CYearSection>(C_NF_DATE);
        case L'h':
        case L'H':
            return AddDatePart<CHourSection>(C_NF_TIME, false);
        case L's':
        case L'S':
            return AddDatePart<CSecondsSection>(C_NF_TIME, false);
        case L'A':
            if (m_Text.substr(m_At, 4) == L"M/PM") {
                m_At += 4;
                return Add<CAMPMSection>();
            }
            break;
        default:
            if (m_AfterSlash && unit >= L'1' && unit <= L'9') return TakeDenominator();
        }
        AddText(m_Text.substr(m_At - 1, 1));
    }

    void TakeDenominator() {
        long long number = 0;
        for (--m_At; m_At < m_Text.size() && IsDigit(m_Text[m_At]); ++m_At)
            number = std::min<long long>(number * 10 + (m_Text[m_At] - L'0'), kLargestDenominator);
        m_AfterSlash = false;
        Add<CHardRFraction>(int(number));
    }

    // The forms in brackets, after the "["; where none fits, the "[" is passed over.
    void TakeBracket() {
        if (m_At < m_Text.size() && m_Text[m_At] == L'$') return TakeLocaleText();
        std::size_t const end = m_Text.find(L']', m_At);
        if (end == std::wstring_view::npos) return;
        std::wstring_view const inside = m_Text.substr(m_At, end - m_At);
        // A single letter is elapsed time, although colour words contain it.
        for (wchar_t const capital : {L'H', L'M', L'S'}) {
            if (inside.empty() || !std::all_of(inside.begin(), inside.end(), [&](wchar_t unit) {
                    return IsLetter(unit, capital);
                }))
                continue;
            m_At = end + 1;
            return AddElapsed(capital, int(inside.size()));
        }
        CString const color = CString(inside).MakeUpper();
        if (CString(L"BLACK CYAN MAGENTA WHITE BLUE GREEN RED YELLOW").Find(color) < 0) return;
        if (color.Find(L' ') >= 0) return;
        m_At = end + 1;
        Add<CFormatColorSection>(color);
    }

    void AddElapsed(wchar_t capital, int count) {
        if (capital == L'H')
            Add<CHourSection>(count, true);
        else if (capital == L'M')
            Add<CMinutesSection>(count, true);
        else
            Add<CSecondsSection>(count, true);
    }

    // "[$kr-41D]": the text before the "-"; the rest names a locale, which is passed over.
    void TakeLocaleText() {
        std::size_t const end = std::min(m_Text.find(L']', m_At), m_Text.size());
        std::wstring_view const inside = m_Text.substr(m_At + 1, end - m_At - 1);
        AddText(inside.substr(0, inside.find(L'-')));
        m_At = std::min(end + 1, m_Text.size());
    }

    void MergeEqualNeighbours() {
        if (Sections().empty()) return;
        auto at = Sections().begin();
        for (auto next = std::next(at); next != Sections().end(); next = std::next(at)) {
            if ((*at)->GetType() == (*next)->GetType() && (*at)->Merge(next->get()))
                Sections().erase(next);
            else
                at = next;
        }
    }

    Position FindType(Position from, int type) {
        return std::find_if(from, Sections().end(),
                            [&](Section const & section) { return section->GetType() == type; });
    }

    // In a date a slash stands between its parts.
    void TurnSlashesIntoText() {
        for (Section & section : Sections())
            if (section->GetType() == CFormatSection::kFraction)
                section = std::make_unique<CFormatTextSection>(L"/");
    }

    // The digits around the slash are those of a fraction.
    void MakeFraction(Position slash) {
        for (auto at = std::next(slash); at != Sections().end(); ++at) {
            if ((*at)->GetType() == CFormatSection::kHardRFraction) break;
            if (!(*at)->IsDigit()) continue;
            *at = std::make_unique<CRFractionSection>(CountOf(*at));
            break;
        }
        for (auto at = slash; at != Sections().begin();) {
            --at;
            if (!(*at)->IsDigit()) continue;
            *at = std::make_unique<CLFractionSection>(CountOf(*at));
            break;
        }
    }

    static int CountOf(Section const & section) {
        return static_cast<CCountSection const &>(*section).Count();
    }

    // Months beside hours or seconds are minutes, and a half of the day needs a 12-hour clock.
    void MakeTimes() {
        auto const isLiteral = [](Section const & section) {
            return section->GetType() >= CFormatSection::kText;
        };
        Position const begin = Sections().begin(), end = Sections().end();
        for (Position at = begin; at != end; ++at) {
            if ((*at)->GetType() != CFormatSection::kMonth) continue;
            auto const before = std::find_if_not(std::make_reverse_iterator(at),
                                                 std::make_reverse_iterator(begin), isLiteral);
            Position const behind = std::find_if_not(std::next(at), end, isLiteral);
            if (before != std::make_reverse_iterator(begin) &&
                (*before)->GetType() == CFormatSection::kHour)
                *at = std::make_unique<CMinutesSection>(CountOf(*at), false);
            else if (behind != end && (*behind)->GetType() == CFormatSection::kSeconds)
                *at = std::make_unique<CMinutesSection>(CountOf(*behind), false);
        }
        if (FindType(begin, CFormatSection::kAMPM) == end) return;
        for (Section & section : Sections())
            if (section->GetType() == CFormatSection::kHour)
                static_cast<CHourSection &>(*section).SetTwelveHour();
    }

    void CountPlaceholders() {
        bool fraction = false;
        for (Section const & section : Sections()) {
            if (!section->IsDigit()) continue;
            fraction = fraction || !section->IsIntegerDigit();
            (fraction ? m_List->fractionPlaceholders : m_List->integerPlaceholders) +=
                CountOf(section);
        }
    }

    std::wstring_view m_Text;
    std::size_t m_At = 0;
    std::unique_ptr<CFormatSectionList> m_List;
    bool m_Left = true;        // before the decimal point
    bool m_AfterSlash = false; // a number is a denominator
};

} // namespace

std::unique_ptr<CFormatSectionList> CompileFormatSection(std::wstring_view text) {
    return Compiler(text).Compile();
}

} // namespace cells::internal

#include "format/CExcelNumberFormat.h"

#include "format/CCNumberFormat.h"
#include "format/DateSerial.h"
#include "platform/Digits.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <map>
#include <memory>
#include <sstream>
#include <string>

using namespace kbt::multilang;

namespace {

// Decimals of a double; what a format asks beyond them is zeros.
constexpr int kMostDecimals = 1100;

std::wstring FixedDigits(double value, int decimals) {
    char text[kMostDecimals + 320];
    int const shown = std::min(decimals, kMostDecimals);
    auto const end =
        std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, shown).ptr;
    std::wstring digits(text, end);
    digits.append(std::size_t(decimals - shown), L'0');
    return digits;
}

// The digits after the point, less one zero at their end. Only one: a longer row of zeros keeps
// the others, so that saved formats go on showing what they show.
std::wstring FractionDigits(double magnitude, int placeholders) {
    std::wstring digits = FixedDigits(magnitude - std::floor(magnitude), placeholders);
    if (digits.size() <= 2) return {};
    digits.erase(0, 2);
    if (digits.back() == L'0') digits.pop_back();
    return digits;
}

bool AllZeros(std::wstring const & digits) {
    return digits.find_first_not_of(L'0') == std::wstring::npos;
}

std::wstring IntegerDigits(double whole, int placeholders) {
    std::wstring digits = FixedDigits(whole, 0);
    if (digits.size() < std::size_t(placeholders))
        digits.insert(0, std::size_t(placeholders) - digits.size(), L'0');
    return digits;
}

void GroupByThousands(std::wstring & digits, wchar_t const * separator) {
    for (std::size_t at = digits.size(); at > 3;) digits.insert(at -= 3, separator);
}

int LimitOf(int count) {
    constexpr int kMostDigits = 9;
    int limit = 1;
    for (int i = 0; i < std::min(count, kMostDigits); ++i) limit *= 10;
    return limit;
}

void SetFractionLimits(CFormatSectionList const & list, CFormatState & state) {
    for (auto const & section : list.sections) {
        switch (section->GetType()) {
        case CFormatSection::kLFraction:
            state.numeratorLimit = LimitOf(static_cast<CCountSection const &>(*section).Count());
            break;
        case CFormatSection::kRFraction:
            state.denominatorLimit = LimitOf(static_cast<CCountSection const &>(*section).Count());
            break;
        case CFormatSection::kHardRFraction:
            state.fixedDenominator = static_cast<CHardRFraction const &>(*section).Denominator();
            break;
        default:
            break;
        }
    }
}

CString Render(cells::LCTX * lctx, CFormatSectionList const & list, double value) {
    CFormatState state;
    state.lctx = lctx;
    state.value = list.type == C_NF_PERCENT ? value * 100 : value;
    state.integerPlaceholders = list.integerPlaceholders;
    state.fractionPlaceholders = list.fractionPlaceholders;
    double const magnitude = std::fabs(state.value);
    state.fractionDigits = FractionDigits(magnitude, list.fractionPlaceholders);
    bool const roundsUp = list.type != C_NF_FRACTION && AllZeros(state.fractionDigits);
    double const whole = std::floor(roundsUp ? magnitude + 0.5 : magnitude);
    state.integerDigits = IntegerDigits(whole, list.integerPlaceholders);
    bool const grouped = !list.sections.empty() &&
                         list.sections.front()->GetType() == CFormatSection::kDigitGrouping;
    if (grouped && whole > 999) GroupByThousands(state.integerDigits, lctx->info(LOCALE_STHOUSAND));
    DoubleToDate(state.value, state.day, state.month, state.year);
    DoubleToTime(state.value, state.hour, state.minute, state.second);
    if (list.type == C_NF_FRACTION) SetFractionLimits(list, state);
    for (auto const & section : list.sections) section->Print(state);
    return state.output;
}

using Cache = std::map<CString, cells::internal::CompiledFormat>;

std::unique_ptr<Cache> & FormatCache() {
    static auto * const cache = new std::unique_ptr<Cache>;
    return *cache;
}

unsigned long g_compiled = 0;

} // namespace

CExcelNumberFormat::CExcelNumberFormat(CString const & text) { CExcelNumberFormat::Parse(text); }

// A ";" in quotes splits too. A fourth part is not used.
void CExcelNumberFormat::Parse(CString const & text) {
    ++g_compiled;
    m_strText = text;
    int start = 0;
    for (CString & part : m_Texts) {
        int const end = start <= text.GetLength() ? text.Find(L';', start) : -1;
        part = end < 0 ? text.Mid(start) : text.Mid(start, end - start);
        start = end < 0 ? text.GetLength() + 1 : end + 1;
    }
    if (m_Texts[1].IsEmpty()) m_Texts[1] = CString(L"-") + m_Texts[0];
    if (m_Texts[2].IsEmpty()) m_Texts[2] = m_Texts[0];
    for (int part = 0; part < kParts; ++part)
        m_Lists[part] = cells::internal::CompileFormatSection(m_Texts[part].View());
    m_nType = m_Lists[0]->type;
}

CString CExcelNumberFormat::Print(cells::LCTX * lctx, double value) const {
    if (!lctx) lctx = cells::user_LCTX();
    if (!std::isfinite(value)) {
        std::wostringstream stream;
        CCNumberFormat().PrintGeneral(lctx, stream, value, 0);
        return CString(stream.str().c_str());
    }
    int const part = value == 0 ? 2 : value < 0 ? 1 : 0;
    return Render(lctx, *m_Lists[part], value);
}

namespace cells::internal {

CompiledFormat CompiledFormat::Of(CString const & text) {
    auto const compile = [&] { return CompiledFormat(new CExcelNumberFormat(text)); };
    Cache * const cache = FormatCache().get();
    if (!cache) return compile();
    CompiledFormat & format = (*cache)[text];
    if (!format) format = compile();
    return format;
}

void CompiledFormat::Hold(CExcelNumberFormat const * format) noexcept { ++format->m_nReferences; }

void CompiledFormat::Drop(CExcelNumberFormat const * format) noexcept {
    if (--format->m_nReferences == 0) delete format;
}

void OpenFormatCache() { FormatCache() = std::make_unique<Cache>(); }
void ReleaseFormatCache() { FormatCache().reset(); }
unsigned long CompiledFormatCount() { return g_compiled; }

} // namespace cells::internal

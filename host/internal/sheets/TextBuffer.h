// A wide stream into a buffer that is used again and again; making a stream anew costs more than
// most numbers.
#pragma once

#include <ostream>
#include <streambuf>
#include <string>
#include <string_view>

namespace cells::host {

class TextBuffer : private std::wstreambuf {
public:
    TextBuffer() : m_Stream(this) {}

    // The stream over an empty buffer.
    std::wostream & Restart() {
        m_Text.clear();
        m_Stream.clear();
        return m_Stream;
    }
    std::wstring_view View() const { return m_Text; }

private:
    std::streamsize xsputn(wchar_t const * units, std::streamsize count) override {
        m_Text.append(units, std::size_t(count));
        return count;
    }
    int_type overflow(int_type unit) override {
        if (!traits_type::eq_int_type(unit, traits_type::eof()))
            m_Text += traits_type::to_char_type(unit);
        return traits_type::not_eof(unit);
    }

    std::wstring m_Text;
    std::wostream m_Stream;
};

} // namespace cells::host

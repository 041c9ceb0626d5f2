#include "host/Carrier.h"

#include "host/Engine.h"
#include "host/LinkTable.h"
#include "platform/CString.h"
#include "platform/Utf.h"

#include <algorithm>

namespace cells::host {
namespace {

// A source reads no formulas: texts and numbers are the same in every locale.
class PlainContext final : public CTX {
public:
    LCTX * lctx() override { return invariant_LCTX(); }
    CCCellManager * manager() override { return nullptr; }
};

CTX * Plain() {
    static PlainContext context;
    return &context;
}

} // namespace

Carrier::~Carrier() {
    if (m_pTable) m_pTable->Remove(*this);
}

bool Source::Carry(CFile & request) { return OnTransport(request) != 0; }
CTX * Source::ctx() { return Plain(); }
CTX * Source::ctx() const { return Plain(); }

bool IsDocumentCalled(std::string_view path, std::string_view name) {
    CString const whole = FromUtf8(path), asked = FromUtf8(name);
    CString const file = whole.Mid(std::max(whole.ReverseFind(L'/'), whole.ReverseFind(L'\\')) + 1);
    int const dot = file.ReverseFind(L'.');
    for (CString const & known : {whole, file, dot > 0 ? file.Left(dot) : file})
        if (known.CompareNoCase(asked) == 0) return true;
    return false;
}

} // namespace cells::host

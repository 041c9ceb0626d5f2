#include "host/Carrier.h"

#include "host/Engine.h"
#include "host/internal/links/LinkTable.h"
#include "platform/CString.h"
#include "platform/Utf.h"

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
    return ::IsDocumentCalled(FromUtf8(path), FromUtf8(name));
}

} // namespace cells::host

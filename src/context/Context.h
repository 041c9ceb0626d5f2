// What travels with every call, and the start and stop of the library.
//
// A host calls CVCellInit once before it makes a manager, and CVCellExit once after the last one is
// gone. It implements cells::CTX, the calculation context, through which all lower code reaches the
// locale and the manager. Scanners and number printing need only the locale and take cells::LCTX.
#pragma once

#include "format/LocaleContext.h"

class CCCellManager;

namespace cells {

// The calculation context. The host implements lctx and manager; the first and third operation are
// the host's own and are never called here. The library never makes one that outlives a call.
class CVCELLS_API CTX {
public:
    virtual void * Reserved1() { return nullptr; }
    virtual LCTX * lctx() = 0;
    virtual void * Reserved3() { return nullptr; }
    // The manager that is current for this call; may be null.
    virtual CCCellManager * manager() = 0;

protected:
    ~CTX() = default;
};

} // namespace cells

namespace kbt {

class CVCELLS_API CCTXProviderBase {
protected:
    ~CCTXProviderBase() = default;
};

} // namespace kbt

namespace cells {

// Gives the context of a manager.
class CVCELLS_API CCTXProvider : public kbt::CCTXProviderBase {
public:
    virtual CTX * ctx() = 0;
    virtual CTX * ctx() const = 0;

protected:
    ~CCTXProvider() = default;
};

} // namespace cells

// Builds the international settings, the function table, the module profile and the leading and
// trailing strings. A second call builds them anew.
CVCELLS_API void CVCellInit();
// Releases what CVCellInit built, but for the function table. Harmless when repeated.
CVCELLS_API void CVCellExit();

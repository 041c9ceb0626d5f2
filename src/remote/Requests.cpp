// The asking side: every DoRemote... is one request and its reply.
#include "context/CCTransportInterface.h"
#include "remote/internal/Wire.h"

#include <tuple>

using cells::internal::WireReader;
using cells::internal::WireWriter;

namespace {

// A document that answers may ask back, so requests nest; deeper than this nothing is sent.
constexpr int kMostNested = 256;
constexpr unsigned int kGrowBytes = 1024;

// One request of the process, from the begin of its session to the end.
class Request {
public:
    explicit Request(CCTransportInterface & transport) : m_Transport(transport) {
        m_Transport.BeginSession();
        ++s_nested;
    }
    Request(Request const &) = delete;
    Request & operator=(Request const &) = delete;
    ~Request() {
        --s_nested;
        m_Transport.EndSession();
    }

    static bool IsDeepest() { return s_nested >= kMostNested; }
    static int Nested() { return s_nested; }

private:
    CCTransportInterface & m_Transport;
    static int s_nested;
};

int Request::s_nested = 0;

// What an operation gives beside its result.
template <typename... Outputs>
struct Out {
    explicit Out(Outputs &... o) : outputs(o...) {}
    std::tuple<Outputs &...> outputs;
};

// Asks; `unsent` is the result where nobody answers. The reference is copied first, since the
// caller's may be gone when the answer is there.
template <typename Result, typename... Outputs, typename... Arguments>
Result Ask(CCTransportInterface & transport, ERemoteOperation operation, CCRemoteRef const * ref,
           Result unsent, Out<Outputs...> const & out, Arguments const &... arguments) {
    if (!ref || Request::IsDeepest()) return unsent;
    CCRemoteRef const target(*ref);
    CMemFile file(kGrowBytes);
    Request const request(transport);
    WireWriter writer(transport.ctx(), file);
    writer.Put(int(operation), target, arguments...);
    writer.Flush();
    if (!transport.DoTransport(&target, file)) return unsent;
    file.SeekToBegin();
    WireReader reader(transport.ctx(), file);
    Result result;
    reader.Take(result);
    std::apply([&](auto &... outputs) { reader.Take(outputs...); }, out.outputs);
    return result;
}

} // namespace

int CCTransportInterface::GetRequestDepth() { return Request::Nested(); }

int CCTransportInterface::DoRemoteIsValidRef(CCRemoteRef const * ref) {
    return Ask(*this, kRemoteIsValidRef, ref, 0, Out());
}

int CCTransportInterface::DoRemoteGetValue(CCRemoteRef const * ref, CCCellValue & value,
                                           int index) {
    return Ask(*this, kRemoteGetValue, ref, 0, Out(value), index);
}

int CCTransportInterface::DoRemoteGetDataSources(CCRemoteRef const * ref, CStringArray & sources,
                                                 int flag) {
    return Ask(*this, kRemoteGetDataSources, ref, 0, Out(sources), flag);
}

int CCTransportInterface::DoRemoteGetItems(CCRemoteRef const * ref, CStringArray & items) {
    return Ask(*this, kRemoteGetItems, ref, 0, Out(items));
}

ushort CCTransportInterface::DoRemoteOpenRef(CCRemoteRef const * ref) {
    return Ask(*this, kRemoteOpenRef, ref, ushort(0), Out());
}

int CCTransportInterface::DoRemoteGetFirstRecord(CCRemoteRef const * ref, ushort handle,
                                                 CPtrArray & values) {
    return Ask(*this, kRemoteGetFirstRecord, ref, 0, Out(values), handle);
}

int CCTransportInterface::DoRemoteGetNextRecord(CCRemoteRef const * ref, ushort handle,
                                                CPtrArray & values) {
    return Ask(*this, kRemoteGetNextRecord, ref, 0, Out(values), handle);
}

int CCTransportInterface::DoRemoteGetPreviousRecord(CCRemoteRef const * ref, ushort handle,
                                                    CPtrArray & values) {
    return Ask(*this, kRemoteGetPreviousRecord, ref, 0, Out(values), handle);
}

int CCTransportInterface::DoRemoteGetLastRecord(CCRemoteRef const * ref, ushort handle,
                                                CPtrArray & values) {
    return Ask(*this, kRemoteGetLastRecord, ref, 0, Out(values), handle);
}

int CCTransportInterface::DoRemoteGetRecord(CCRemoteRef const * ref, ushort handle, int number,
                                            CPtrArray & values) {
    return Ask(*this, kRemoteGetRecord, ref, 0, Out(values), handle, number);
}

int CCTransportInterface::DoRemoteRefSize(CCRemoteRef const * ref, ushort handle, CSize & size) {
    return Ask(*this, kRemoteRefSize, ref, 0, Out(size), handle);
}

int CCTransportInterface::DoRemoteNextValue(CCRemoteRef const * ref, ushort handle,
                                            CCCellValue & value) {
    return Ask(*this, kRemoteNextValue, ref, 0, Out(value), handle);
}

int CCTransportInterface::DoRemoteCloseRef(CCRemoteRef const * ref, ushort handle) {
    return Ask(*this, kRemoteCloseRef, ref, 0, Out(), handle);
}

int CCTransportInterface::DoRemoteRegisterDependent(CCRemoteRef const * ref,
                                                    CCRemoteRef const * dependent) {
    if (!dependent) return 1;
    return Ask(*this, kRemoteRegisterDependent, ref, 1, Out(), *dependent);
}

int CCTransportInterface::DoRemoteUnRegisterDependent(CCRemoteRef const * ref,
                                                      CCRemoteRef const * dependent) {
    if (!dependent) return 0;
    return Ask(*this, kRemoteUnRegisterDependent, ref, 0, Out(), *dependent);
}

int CCTransportInterface::DoRemoteInvalidateRef(CCRemoteRef const * ref, CCRemoteRef const * by) {
    if (!by) return 0;
    return Ask(*this, kRemoteInvalidateRef, ref, 0, Out(), *by);
}

int CCTransportInterface::DoRemoteMoveFormula(CCRemoteRef const * ref, CCRemoteRef const * old,
                                              CCRemoteRef const * now) {
    if (!old || !now) return 0;
    return Ask(*this, kRemoteMoveFormula, ref, 0, Out(), *old, *now);
}

int CCTransportInterface::DoRemoteMoveDependent(CCRemoteRef const * ref, CCRemoteRef const * old,
                                                CCRemoteRef const * now, int mode) {
    if (!old || !now) return 0;
    return Ask(*this, kRemoteMoveDependent, ref, 0, Out(), *old, *now, mode);
}

int CCTransportInterface::DoRemoteIsSingleValue(CCRemoteRef const * ref) {
    return Ask(*this, kRemoteIsSingleValue, ref, 0, Out());
}

int CCTransportInterface::DoRemoteInitRecalc(CCRemoteRef const * ref, int flag) {
    return Ask(*this, kRemoteInitRecalc, ref, 1, Out(), flag);
}

int CCTransportInterface::DoRemoteSetSourceValue(CCRemoteRef const * ref,
                                                 CCCellValue const & value) {
    return Ask(*this, kRemoteSetSourceValue, ref, 0, Out(), value);
}

int CCTransportInterface::DoRemoteSetValueInCompound(CCRemoteRef const * ref, CString const & name,
                                                     int number, CCCellValue const & value) {
    return Ask(*this, kRemoteSetValueInCompound, ref, 0, Out(), name, number, value);
}

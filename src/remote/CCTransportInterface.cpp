// The results of a document without a transport.
#include "remote/CCTransportInterface.h"

int CCTransportInterface::IsRemoteDocumentOpen(wchar_t const *) { return 0; }
int CCTransportInterface::IsValidRemoteRef(CCRemoteRef const *, int) { return 1; }
int CCTransportInterface::IsFunctionAvailable(int) { return 1; }
int CCTransportInterface::BeginSession() { return 0; }
void CCTransportInterface::EndSession(int) {}
void CCTransportInterface::EndSession() {}
int CCTransportInterface::DoTransport(CCRemoteRef const *, CFile &) { return 0; }
int CCTransportInterface::OnTransport(CFile &) { return 0; }
int CCTransportInterface::DoRemoteIsValidRef(CCRemoteRef const *) { return 0; }
int CCTransportInterface::DoRemoteGetValue(CCRemoteRef const *, CCCellValue &, int) { return 0; }
int CCTransportInterface::DoRemoteGetDataSources(CCRemoteRef const *, CStringArray &, int) {
    return 0;
}
int CCTransportInterface::DoRemoteGetItems(CCRemoteRef const *, CStringArray &) { return 0; }
ushort CCTransportInterface::DoRemoteOpenRef(CCRemoteRef const *) { return 0; }
int CCTransportInterface::DoRemoteGetFirstRecord(CCRemoteRef const *, ushort, CPtrArray &) {
    return 0;
}
int CCTransportInterface::DoRemoteGetNextRecord(CCRemoteRef const *, ushort, CPtrArray &) {
    return 0;
}
int CCTransportInterface::DoRemoteGetPreviousRecord(CCRemoteRef const *, ushort, CPtrArray &) {
    return 0;
}
int CCTransportInterface::DoRemoteGetLastRecord(CCRemoteRef const *, ushort, CPtrArray &) {
    return 0;
}
int CCTransportInterface::DoRemoteGetRecord(CCRemoteRef const *, ushort, int, CPtrArray &) {
    return 0;
}
int CCTransportInterface::DoRemoteRefSize(CCRemoteRef const *, ushort, CSize &) { return 0; }
int CCTransportInterface::DoRemoteNextValue(CCRemoteRef const *, ushort, CCCellValue &) {
    return 0;
}
int CCTransportInterface::DoRemoteCloseRef(CCRemoteRef const *, ushort) { return 0; }
int CCTransportInterface::DoRemoteRegisterDependent(CCRemoteRef const *, CCRemoteRef const *) {
    return 1;
}
int CCTransportInterface::DoRemoteUnRegisterDependent(CCRemoteRef const *, CCRemoteRef const *) {
    return 0;
}
int CCTransportInterface::DoRemoteInvalidateRef(CCRemoteRef const *, CCRemoteRef const *) {
    return 0;
}
int CCTransportInterface::DoRemoteMoveFormula(CCRemoteRef const *, CCRemoteRef const *,
                                              CCRemoteRef const *) {
    return 0;
}
int CCTransportInterface::DoRemoteMoveDependent(CCRemoteRef const *, CCRemoteRef const *,
                                                CCRemoteRef const *, int) {
    return 0;
}
int CCTransportInterface::DoRemoteIsSingleValue(CCRemoteRef const *) { return 0; }
int CCTransportInterface::DoRemoteInitRecalc(CCRemoteRef const *, int) { return 1; }
int CCTransportInterface::DoRemoteSetSourceValue(CCRemoteRef const *, CCCellValue const &) {
    return 0;
}
int CCTransportInterface::DoRemoteSetValueInCompound(CCRemoteRef const *, CString const &, int,
                                                     CCCellValue const &) {
    return 0;
}
int CCTransportInterface::OnRemoteIsValidRef(CCRemoteRef const *) { return 0; }
int CCTransportInterface::OnRemoteGetValue(CCRemoteRef const *, CCCellValue &, int) { return 0; }
int CCTransportInterface::OnRemoteGetDataSources(CCRemoteRef const *, CStringArray &, int) {
    return 0;
}
int CCTransportInterface::OnRemoteGetItems(CCRemoteRef const *, CStringArray &) { return 0; }
ushort CCTransportInterface::OnRemoteOpenRef(CCRemoteRef const *) { return 0; }
int CCTransportInterface::OnRemoteGetFirstRecord(CCRemoteRef const *, ushort, CPtrArray &) {
    return 0;
}
int CCTransportInterface::OnRemoteGetNextRecord(CCRemoteRef const *, ushort, CPtrArray &) {
    return 0;
}
int CCTransportInterface::OnRemoteGetPreviousRecord(CCRemoteRef const *, ushort, CPtrArray &) {
    return 0;
}
int CCTransportInterface::OnRemoteGetLastRecord(CCRemoteRef const *, ushort, CPtrArray &) {
    return 0;
}
int CCTransportInterface::OnRemoteGetRecord(CCRemoteRef const *, ushort, int, CPtrArray &) {
    return 0;
}
int CCTransportInterface::OnRemoteRefSize(CCRemoteRef const *, ushort, CSize &) { return 0; }
int CCTransportInterface::OnRemoteNextValue(CCRemoteRef const *, ushort, CCCellValue &) {
    return 0;
}
int CCTransportInterface::OnRemoteCloseRef(CCRemoteRef const *, ushort) { return 0; }
int CCTransportInterface::OnRemoteRegisterDependent(CCRemoteRef const *, CCRemoteRef const *) {
    return 1;
}
int CCTransportInterface::OnRemoteUnRegisterDependent(CCRemoteRef const *, CCRemoteRef const *) {
    return 0;
}
int CCTransportInterface::OnRemoteInvalidateRef(CCRemoteRef const *, CCRemoteRef const *) {
    return 0;
}
int CCTransportInterface::OnRemoteMoveFormula(CCRemoteRef const *, CCRemoteRef const *,
                                              CCRemoteRef const *) {
    return 0;
}
int CCTransportInterface::OnRemoteMoveDependent(CCRemoteRef const *, CCRemoteRef const *,
                                                CCRemoteRef const *, int) {
    return 0;
}
int CCTransportInterface::OnRemoteIsSingleValue(CCRemoteRef const *) { return 0; }
int CCTransportInterface::OnRemoteInitRecalc(CCRemoteRef const *, int) { return 1; }
int CCTransportInterface::OnRemoteSetSourceValue(CCRemoteRef const *, CCCellValue const &) {
    return 0;
}
int CCTransportInterface::OnRemoteSetValueInCompound(CCRemoteRef const *, CString const &, int,
                                                     CCCellValue const &) {
    return 0;
}

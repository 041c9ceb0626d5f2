// CCTransportInterface: the reference protocol between documents.
//
// Every operation on a reference has a remote twin, DoRemote..., which asks the document that the
// reference names, and an OnRemote... of the same parameters, which answers such a request. The
// library knows no process and no network: a host moves requests.
//
//     int DoTransport(CCRemoteRef const * ref, CFile & file) override {
//         Document * there = Find(ref->document());         // whoever answers for it
//         return there ? there->OnTransport(file) : 0;      // the reply stands in the file then
//     }
//
// Where nobody answers, a registration and a recalculation proceed (1) and all else fails (0). A
// reply that ends too early throws CArchiveException. A document that answers may ask back before
// it does; requests nest 256 deep, and beyond that nobody answers.
#pragma once

#include "context/Context.h"
#include "platform/Arrays.h"
#include "platform/Geometry.h"

class CCCellValue;
class CCRemoteRef;
class CFile;

// Numbers of the operations in requests.
enum ERemoteOperation : int {
    kRemoteIsValidRef = 1,
    kRemoteGetValue = 2,
    kRemoteGetDataSources = 3,
    kRemoteGetItems = 4,
    kRemoteOpenRef = 5,
    kRemoteGetFirstRecord = 6,
    kRemoteGetNextRecord = 7,
    kRemoteGetPreviousRecord = 8,
    kRemoteGetLastRecord = 9,
    kRemoteGetRecord = 10,
    kRemoteRefSize = 11,
    kRemoteNextValue = 12,
    kRemoteCloseRef = 13,
    kRemoteRegisterDependent = 14,
    kRemoteUnRegisterDependent = 15,
    kRemoteInvalidateRef = 16,
    kRemoteMoveFormula = 17,
    kRemoteMoveDependent = 18,
    kRemoteIsSingleValue = 19,
    kRemoteInitRecalc = 20,
    kRemoteSetSourceValue = 21,
    kRemoteSetValueInCompound = 22,
};

// A document and a handle in it, for hosts that keep walks over other documents.
struct CVCELLS_API CCDocOpenRef {
    CString m_strDocument;
    ushort m_nHandle = 0;
};

class CVCELLS_API CCTransportInterface : public cells::CCTXProvider {
public:
    virtual ~CCTransportInterface() = default;
    virtual int IsRemoteDocumentOpen(wchar_t const * name);
    virtual int IsValidRemoteRef(CCRemoteRef const * ref, int op);
    virtual int IsFunctionAvailable(int op);
    // Every operation that changes an item stands between a begin and an end, strictly nested. The
    // meaning of the identifier is the host's.
    virtual int BeginSession();
    virtual void EndSession(int id);
    virtual void EndSession();
    // Moves a request to the document of the reference and brings the reply back in the same file;
    // 0 when there is none.
    virtual int DoTransport(CCRemoteRef const * ref, CFile & file);
    // Answers the request in the file and puts the reply over it; 0, with the file as it was, for a
    // request that is not for this document. A request that ends too early throws
    // CArchiveException.
    virtual int OnTransport(CFile & file);

    virtual int DoRemoteIsValidRef(CCRemoteRef const * ref);
    virtual int DoRemoteGetValue(CCRemoteRef const * ref, CCCellValue & value, int index);
    virtual int DoRemoteGetDataSources(CCRemoteRef const * ref, CStringArray & sources, int flag);
    virtual int DoRemoteGetItems(CCRemoteRef const * ref, CStringArray & items);
    virtual ushort DoRemoteOpenRef(CCRemoteRef const * ref);
    virtual int DoRemoteGetFirstRecord(CCRemoteRef const * ref, ushort handle, CPtrArray & values);
    virtual int DoRemoteGetNextRecord(CCRemoteRef const * ref, ushort handle, CPtrArray & values);
    virtual int DoRemoteGetPreviousRecord(CCRemoteRef const * ref, ushort handle,
                                          CPtrArray & values);
    virtual int DoRemoteGetLastRecord(CCRemoteRef const * ref, ushort handle, CPtrArray & values);
    virtual int DoRemoteGetRecord(CCRemoteRef const * ref, ushort handle, int number,
                                  CPtrArray & values);
    virtual int DoRemoteRefSize(CCRemoteRef const * ref, ushort handle, CSize & size);
    virtual int DoRemoteNextValue(CCRemoteRef const * ref, ushort handle, CCCellValue & value);
    virtual int DoRemoteCloseRef(CCRemoteRef const * ref, ushort handle);
    virtual int DoRemoteRegisterDependent(CCRemoteRef const * ref, CCRemoteRef const * dependent);
    virtual int DoRemoteUnRegisterDependent(CCRemoteRef const * ref, CCRemoteRef const * dependent);
    virtual int DoRemoteInvalidateRef(CCRemoteRef const * ref, CCRemoteRef const * by);
    virtual int DoRemoteMoveFormula(CCRemoteRef const * ref, CCRemoteRef const * old,
                                    CCRemoteRef const * now);
    virtual int DoRemoteMoveDependent(CCRemoteRef const * ref, CCRemoteRef const * old,
                                      CCRemoteRef const * now, int mode);
    virtual int DoRemoteIsSingleValue(CCRemoteRef const * ref);
    virtual int DoRemoteInitRecalc(CCRemoteRef const * ref, int flag);
    virtual int DoRemoteSetSourceValue(CCRemoteRef const * ref, CCCellValue const & value);
    virtual int DoRemoteSetValueInCompound(CCRemoteRef const * ref, CString const & name,
                                           int number, CCCellValue const & value);

    virtual int OnRemoteIsValidRef(CCRemoteRef const * ref);
    virtual int OnRemoteGetValue(CCRemoteRef const * ref, CCCellValue & value, int index);
    virtual int OnRemoteGetDataSources(CCRemoteRef const * ref, CStringArray & sources, int flag);
    virtual int OnRemoteGetItems(CCRemoteRef const * ref, CStringArray & items);
    virtual ushort OnRemoteOpenRef(CCRemoteRef const * ref);
    virtual int OnRemoteGetFirstRecord(CCRemoteRef const * ref, ushort handle, CPtrArray & values);
    virtual int OnRemoteGetNextRecord(CCRemoteRef const * ref, ushort handle, CPtrArray & values);
    virtual int OnRemoteGetPreviousRecord(CCRemoteRef const * ref, ushort handle,
                                          CPtrArray & values);
    virtual int OnRemoteGetLastRecord(CCRemoteRef const * ref, ushort handle, CPtrArray & values);
    virtual int OnRemoteGetRecord(CCRemoteRef const * ref, ushort handle, int number,
                                  CPtrArray & values);
    virtual int OnRemoteRefSize(CCRemoteRef const * ref, ushort handle, CSize & size);
    virtual int OnRemoteNextValue(CCRemoteRef const * ref, ushort handle, CCCellValue & value);
    virtual int OnRemoteCloseRef(CCRemoteRef const * ref, ushort handle);
    virtual int OnRemoteRegisterDependent(CCRemoteRef const * ref, CCRemoteRef const * dependent);
    virtual int OnRemoteUnRegisterDependent(CCRemoteRef const * ref, CCRemoteRef const * dependent);
    virtual int OnRemoteInvalidateRef(CCRemoteRef const * ref, CCRemoteRef const * by);
    virtual int OnRemoteMoveFormula(CCRemoteRef const * ref, CCRemoteRef const * old,
                                    CCRemoteRef const * now);
    virtual int OnRemoteMoveDependent(CCRemoteRef const * ref, CCRemoteRef const * old,
                                      CCRemoteRef const * now, int mode);
    virtual int OnRemoteIsSingleValue(CCRemoteRef const * ref);
    virtual int OnRemoteInitRecalc(CCRemoteRef const * ref, int flag);
    virtual int OnRemoteSetSourceValue(CCRemoteRef const * ref, CCCellValue const & value);
    virtual int OnRemoteSetValueInCompound(CCRemoteRef const * ref, CString const & name,
                                           int number, CCCellValue const & value);

    // Whether ErrorMessage may show something; 1 at first.
    int GetNotifyEnable() const { return m_nNotifyEnable; }
    void SetNotifyEnable(int enable) { m_nNotifyEnable = enable; }
    void Revert() {}

    // For hosts that move requests. What a request asks; false for what is none. The file stands at
    // its begin then.
    static bool ReadRequest(CFile & file, int & operation, CCRemoteRef & ref);
    // Whether the file holds a whole reply to such a request: what comes from elsewhere is tested
    // before DoTransport takes it for one.
    static bool IsReply(CFile & file, int operation);
    // How many requests of this process wait for their replies.
    static int GetRequestDepth();

private:
    int m_nNotifyEnable = 1;
};

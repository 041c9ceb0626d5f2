// CCCellManager: the front of the engine for one document or sheet.
//
// A host derives from it, stores cells as it likes, and answers GetItem: which item stands at this
// place? Everything else has a base body. A host with regions, names or a grid of its own overrides
// what it needs, in particular IsValidRef, GetRefSize, GetValue for an index, the registration of
// dependents on regions, and LoadDependencies.
//
//     class Sheet : public CCCellManager, cells::CTX { ... GetItem ... };
//     sheet.SetCellText(&a1, L"=B1*2");
//     while (sheet.DoIdle(0)) {}            // brings dependents up to date, slice by slice
//     sheet.GetCellValueText(&a1, buffer, sizeof buffer);
//
// Operations over a place give 1, or 0 where there is no item (or no cell).
#pragma once

#include "cells/CCCell.h"
#include "cells/CCRecalcList.h"
#include "context/CCTransportInterface.h"
#include "context/Events.h"
#include "context/LiveManagers.h"
#include "formula/CCDocumentRef.h"
#include "platform/COleDateTime.h"
#include "values/BulkRead.h"

#include <memory>
#include <vector>

class CCNameRef;
class CCRemoteRef;
class CCWorkbook;

// Whether remote data is recalculated: the user was not asked yet, or answered.
enum ECRecalcRemote : int { rrUnknown = 0, rrNo = 1, rrYes = 2 };

class CVCELLS_API CCCellManager : public CCTransportInterface,
                                  public CCBaseListener,
                                  public CCBaseBroadcaster {
public:
    class CVCELLS_API CCRecalcList : public cells::internal::RecalcList {};

    // The item of a document property, such as the file name: dependents of something that no host
    // stores in a cell.
    class CVCELLS_API CCDocItem : public CCItem {
    public:
        CCDocItem() = default;
        explicit CCDocItem(CCDocumentRef::ECDocRefType type) : m_Ref(type) {}
        explicit CCDocItem(CCDocumentRef const & ref) : m_Ref(ref) {}
        CCRef const * GetRef() const override { return &m_Ref; }
        void Read(cells::CTX * ctx, CArchive & ar) override;
        void Write(cells::CTX * ctx, CArchive & ar) override;
        bool IsEqual(CCItem const * item) const override;

    private:
        CCDocumentRef m_Ref;
    };

    CCCellManager();
    CCCellManager(CCCellManager const &) = delete;
    CCCellManager & operator=(CCCellManager const &) = delete;
    ~CCCellManager() override;

    // Host facts. Type 1 is a spreadsheet: text references are then read as cells first.
    virtual int GetType() const { return 0; }
    virtual void ErrorMessage(unsigned int id);
    // Whether data of other documents is to be read anew when a document is opened; asks the user
    // once, where `ask` is set and the document calculates by itself. The engine never calls it.
    virtual int GetRecalcRemote(int ask);
    virtual CSize GetRefSize(CCRef const *) { return {1, 1}; }

    virtual void SetDirty() {}
    virtual void Protect(wchar_t const * password);
    virtual void UnProtect();

    // The store: the item at a place, or null. Borrowed.
    virtual CCItem * GetItem(CCRef const * ref) = 0;
    virtual CCItem const * GetItem(CCRef const * ref) const;

    // Calculation. 0 from GetAutoCalc is manual calculation: changes are not recorded.
    virtual int GetAutoCalc() const { return 1; }
    virtual void OnUpdateIdleRecalc() {} // a tick during a pass
    // One slice of work: all expansion of dependents and at most 64 cells. Non-zero while work
    // remains; a non-zero `finish` does it all.
    virtual int DoIdle(int finish);
    // The host calls it before it deletes an item.
    virtual void OnRemoveItem(CCItem * item);
    virtual int SetSourceValue(CCRef const * ref, CCCellValue const & value);

protected:
    // One step of expansion: queues the dependents of a place and gives its item. The patch form
    // keeps every dependent behind the reference that feeds it.
    virtual CCItem * ProcessDependents(CCRef const * ref, CCRecalcList & list);
    virtual CCItem * PatchProcessDependents(CCRef const * ref, CCRecalcList & list);

public:
    virtual int GetCellValueText(CCRef const * ref, wchar_t * buffer, int bytes) const;
    virtual int GetCellFormula(CCRef const * ref, wchar_t * buffer, int bytes);
    // Enters a text as a user does. Dependents get their values in DoIdle.
    virtual int SetCellText(CCRef const * ref, wchar_t const * text);
    virtual int ClearCell(CCRef const * ref, int what);

    virtual int IsValidRef(CCRef const * ref);
    virtual int GetValue(CCRef const * ref, CCCellValue & value, int index);
    virtual int GetDataSources(CStringArray & sources, int flag);
    virtual int GetItems(CCRef const * ref, CStringArray & strings) const;

    // Walks: a handle (0 is failure), values in order, whole rows, the end.
    virtual ushort OpenRef(CCRef const * ref);
    virtual int GetFirstRecord(ushort handle, CPtrArray & values);
    virtual int GetNextRecord(ushort handle, CPtrArray & values);
    virtual int GetPreviousRecord(ushort handle, CPtrArray & values);
    virtual int GetLastRecord(ushort handle, CPtrArray & values);
    virtual int GetRecord(ushort handle, int number, CPtrArray & values);
    virtual int RefSize(ushort handle, CSize & size);
    virtual int NextValue(ushort handle, CCCellValue & value);
    virtual int CloseRef(ushort handle);

    virtual int IsSingleValue(CCRef const * ref);
    virtual int SetValue(CCRef const * ref, CCCellValue const & value);
    virtual int RecalcCell(CCRef const * ref);

    virtual int RegisterDependent(CCRef const * ref, CCRef const * dependent);
    virtual int UnRegisterDependent(CCItem * item, CCRef const * dependent);
    virtual int UnRegisterDependent(CCRef const * ref, CCRef const * dependent);
    virtual int InvalidateRef(CCRef const * ref, CCRef const * by);
    virtual int MoveFormula(CCRef const * ref, CCRef const * from, CCRef const * to);
    virtual int MoveDependent(CCRef const * ref, CCRef const * from, CCRef const * to, int mode);
    virtual int SetValueInCompound(CCRef const * ref, CString const & name, int number,
                                   CCCellValue const & value);

    virtual int RegisterDocumentDependent(CCDocumentRef const * ref, CCRef const * dependent);
    virtual int UnRegisterDocumentDependent(CCDocumentRef const * ref, CCRef const * dependent);
    virtual int MoveDocumentFormula(CCDocumentRef const * ref, CCRef const * from,
                                    CCRef const * to);
    virtual void RecalcDocumentItems(CCDocumentRef::ECDocRefType type);
    virtual CCItem * GetDocumentItem(CCDocumentRef::ECDocRefType type);

    // Properties of the document; 0 where it has no such property.
    virtual int GetDocumentCreateDate(ATL::COleDateTime &) { return 0; }
    virtual int GetDocumentEditTime(ATL::COleDateTime &) { return 0; }
    virtual int GetDocumentPrintDate(ATL::COleDateTime &) { return 0; }
    virtual int GetDocumentSaveDate(ATL::COleDateTime &) { return 0; }
    virtual int GetDocumentAuthor(CString &) { return 0; }
    virtual int GetDocumentComments(CString &) { return 0; }
    virtual int GetDocumentFileName(CString &) { return 0; }
    virtual int GetDocumentFileSize(double &) { return 0; }
    virtual int GetDocumentKeywords(CString &) { return 0; }
    virtual int GetDocumentNumChars(unsigned int &) { return 0; }
    virtual int GetDocumentNumPages(unsigned int &) { return 0; }
    virtual int GetDocumentNumWords(unsigned int &) { return 0; }
    virtual int GetDocumentSubject(CString &) { return 0; }
    virtual int GetDocumentTitle(CString &) { return 0; }
    virtual int GetDocumentRevNum(unsigned int &) { return 0; }
    virtual int GetDocumentPage(CCRef const *, unsigned int &) { return 0; }
    virtual int GetDocumentMergeRec(unsigned int &) { return 0; }
    virtual int GetDocumentMergeCount(unsigned int &) { return 0; }
    virtual int GetDocumentColumn(CCRef const *, unsigned int &) { return 0; }
    virtual int GetDocumentRow(CCRef const *, unsigned int &) { return 0; }

    int IsValidRemoteRef(CCRemoteRef const * ref, int op) override;
    virtual CString GetDocumentName() const { return {}; }
    virtual int IsValidDocument(wchar_t const * name) const;
    virtual int IsValidReference(wchar_t const * text) const;

    // The reference as another document knows it, and back; the caller's, or null.
    virtual CCRemoteRef * TranslateToRemoteRef(CCRef const * ref) const;
    virtual CCRef * TranslateToInternalRef(CCRemoteRef const * ref) const;
    using CCTransportInterface::DoRemoteInvalidateRef;
    using CCTransportInterface::DoRemoteMoveDependent;
    using CCTransportInterface::DoRemoteMoveFormula;
    using CCTransportInterface::DoRemoteRegisterDependent;
    using CCTransportInterface::DoRemoteUnRegisterDependent;
    virtual int DoRemoteRegisterDependent(CCRemoteRef const * ref, CCRef const * dependent);
    virtual int DoRemoteUnRegisterDependent(CCRemoteRef const * ref, CCRef const * dependent);
    virtual int DoRemoteInvalidateRef(CCRemoteRef const * ref, CCRef const * by);
    virtual int DoRemoteMoveFormula(CCRemoteRef const * ref, CCRef const * from, CCRef const * to);
    virtual int DoRemoteMoveDependent(CCRemoteRef const * ref, CCRef const * from, CCRef const * to,
                                      int mode);

    // What other documents ask: the plain operation of the same name on the place that the request
    // names, 0 for a request that is not for this document.
    int OnRemoteIsValidRef(CCRemoteRef const * ref) override;
    int OnRemoteGetValue(CCRemoteRef const * ref, CCCellValue & value, int index) override;
    int OnRemoteGetDataSources(CCRemoteRef const * ref, CStringArray & sources, int flag) override;
    int OnRemoteGetItems(CCRemoteRef const * ref, CStringArray & items) override;
    ushort OnRemoteOpenRef(CCRemoteRef const * ref) override;
    int OnRemoteGetFirstRecord(CCRemoteRef const * ref, ushort handle, CPtrArray & values) override;
    int OnRemoteGetNextRecord(CCRemoteRef const * ref, ushort handle, CPtrArray & values) override;
    int OnRemoteGetPreviousRecord(CCRemoteRef const * ref, ushort handle,
                                  CPtrArray & values) override;
    int OnRemoteGetLastRecord(CCRemoteRef const * ref, ushort handle, CPtrArray & values) override;
    int OnRemoteGetRecord(CCRemoteRef const * ref, ushort handle, int number,
                          CPtrArray & values) override;
    int OnRemoteRefSize(CCRemoteRef const * ref, ushort handle, CSize & size) override;
    int OnRemoteNextValue(CCRemoteRef const * ref, ushort handle, CCCellValue & value) override;
    int OnRemoteCloseRef(CCRemoteRef const * ref, ushort handle) override;
    int OnRemoteRegisterDependent(CCRemoteRef const * ref, CCRemoteRef const * dependent) override;
    int OnRemoteUnRegisterDependent(CCRemoteRef const * ref,
                                    CCRemoteRef const * dependent) override;
    int OnRemoteInvalidateRef(CCRemoteRef const * ref, CCRemoteRef const * by) override;
    int OnRemoteMoveFormula(CCRemoteRef const * ref, CCRemoteRef const * old,
                            CCRemoteRef const * now) override;
    int OnRemoteMoveDependent(CCRemoteRef const * ref, CCRemoteRef const * old,
                              CCRemoteRef const * now, int mode) override;
    int OnRemoteIsSingleValue(CCRemoteRef const * ref) override;
    int OnRemoteInitRecalc(CCRemoteRef const * ref, int flag) override;
    int OnRemoteSetSourceValue(CCRemoteRef const * ref, CCCellValue const & value) override;
    int OnRemoteSetValueInCompound(CCRemoteRef const * ref, CString const & name, int number,
                                   CCCellValue const & value) override;

    virtual void Read(CArchive & ar);
    virtual void Write(CArchive & ar) const;

    virtual CCWorkbook * GetWorkbook() const { return nullptr; } // null: the manager stands alone
    virtual CString GetSheetName() const { return {}; }
    virtual int IsValidSheetName(wchar_t const *) const { return 0; }
    virtual CCRemoteRef * TranslateToSheetRef(CCRef const *) { return nullptr; } // the caller's
    virtual CCCellManager * GetManForNameIndex(ushort) { return nullptr; }
    virtual CCRef * TranslateNameRef(CCNameRef const *) { return nullptr; } // the caller's
    virtual ushort GetNameIndex(CCNameRef const *) { return 1; }
    virtual ushort GetNameIndex(wchar_t const *) { return 1; }
    // The dependents of a place, newest first, as all walks see them: a host adds those that it
    // keeps itself. The nodes are the caller's.
    virtual CCRefList * LoadDependencies(CCRef const * ref);

    // The formula of a cell computed the place that it reads, and there is none: it follows
    // nothing. A host whose names come and go computes such formulas again when one comes.
    virtual void OnPlaceMissing(CCRef const * /*cell*/) {}

    // Optional, for protection. 1 for a place that refuses readers and conceals what it holds:
    // where a formula computes such a place and was refused, it reads #REF!.
    virtual int IsConcealed(CCRef const *) { return 0; }

    // Whether a formula that names a place on a sheet that is not there is registered at the same
    // place of its own sheet. A workbook whose formulas outlive the sheets that they name answers
    // 0: such a formula shows its error and depends on no place.
    virtual int RegistersPlacesOfMissingSheets() const { return 1; }

    // Optional, for speed. A host in which a formula that is entered is the only reason for one
    // place to depend on another answers 1: circles are then looked for from both ends. Not so
    // where LoadDependencies adds dependents of its own.
    virtual int FormulasImplyDependents() const { return 0; }

    // Whether entries and formulas read the texts of errors, in the language in force, as
    // constants:
    // "=SUM(#REF!)" is then a formula, and an entry "#REF!" that error. Without it the first is a
    // syntax error and the second a text.
    virtual int ReadsErrorTexts() const { return 0; }

    // Optional, for speed. A host whose cells are all readable places of one value each answers 1:
    // opening, reading and closing a cell then is one call of GetValue.
    virtual int ReadsCellsDirectly() const { return 0; }
    // Gives the numbers of a range to the sink, in walking order, and skips everything else: what
    // a walk over the values would find. 0 when the host does not serve the range in this way.
    virtual int ReadNumbers(CCRef const *, cells::NumberSink &) { return 0; }
    // The first cell of a range, in walking order, whose number is exactly this one; and how many
    // of its cells are not blank. 0 when the host does not serve the range in this way.
    virtual int FindNumber(CCRef const *, double, CCCellValue &) { return 0; }
    virtual int CountOccupied(CCRef const *, double &) { return 0; }
    // The position in a range, in walking order from 0, of the first cell with this number or text,
    // the same in type and content; -1 for none. 0 when the host does not serve this search. A host
    // that keeps an index for it drops what OnValueStored of its cells tells it.
    virtual int FindKey(CCRef const *, CCCellValue const &, int &) { return 0; }

    int GetCurRecalcCount() const { return m_RecalcList.GetCount(); }
    int GetCurProcessCount() const { return m_ProcessList.GetCount(); }
    unsigned long GetAllRecalcCount() const { return m_nAllRecalc; }
    void SetRecalcRemote(ECRecalcRemote choice) { m_eRecalcRemote = choice; }
    ECRecalcRemote GetTrueRecalcRemote() const { return m_eRecalcRemote; }
    int IsProtected() const { return m_bProtected; }
    CString GetPassword() const { return m_strPassword; }
    int IsProtLock(CCCell const * cell, int warn) const;
    void DoProtectionDialog();
    void Revert();
    void ReleaseContents();
    // Queues a change: the cell itself (self 1, a formula) or its dependents.
    void InitIdleRecalc(CCItem const * item, int self);
    // A formula was removed and its value stayed: when it was queued, its dependents still wait.
    void OnFormulaRemoved(CCItem const * item);
    // A formula reads a place that it did not read before: it is computed after that place from the
    // next pass on.
    void OnNewPrecedent(CCRef const * reader);
    // Queues a new formula, or refuses a cycle with 0.
    int InitFormulaRecalc(CCItem const * item);
    void DoNonIdleCalc(CCItem const * item, int flag); // for workbooks; a lone manager ignores it
    bool OnEvent(CCBaseEvent const &) override { return false; }
    using CCBaseListener::IsEqual;

    // Between the parts of the engine.
    int SkipValue(ushort handle); // as NextValue, without reading
    cells::internal::ManagerSerial GetSerial() const { return m_nSerial; }
    unsigned long long GetOpenStamp() const { return m_nOpenStamp; }
    void CloseOpenedSince(unsigned long long stamp);
    int GetOpenRefCount() const; // walks that are open now
    int GetDirtyMarking() const { return m_nDirtyMarking; }
    int SetDirtyMarking(int marking);
    // The place inside a reference, and the sheet that it is on; null for none.
    CCRef const * InnerPlace(CCRef const * ref, CCCellManager const *& sheet) const;
    void NoteRemoteDependent() { m_bRemoteDependents = true; }
    bool HasRemoteDependents() const { return m_bRemoteDependents; }
    void NoteStoredDependents() { m_bStoredDependents = true; }
    bool HasStoredDependents() const { return m_bStoredDependents; }
    void NoteAddedDependent() { m_bAddedDependents = true; }

protected:
    struct SCOpenRef {
        std::unique_ptr<CCRef> m_pRef; // null for a free slot
        long long m_nPos = 0;          // the next element
        CSize m_Size;
        unsigned long long m_nStamp = 0;
    };

    // The own place that a request of another document is about; null where it is about none.
    std::unique_ptr<CCRef> AskedPlace(CCRemoteRef const * ref) const;
    void DoRecalc(int limit);
    void DoProcess(int limit);
    void PatchDoProcess(int limit);
    int LoadRecord(SCOpenRef & slot, CPtrArray & values);

    CCRecalcList m_RecalcList;  // references that will get RecalcCell, in order
    CCRecalcList m_ProcessList; // references whose dependents are still to be found

private:
    friend class CCItem;
    class RemoteRefs;

    CCCell * CellAt(CCRef const * ref, CCCellManager *& owner) const;
    SCOpenRef * OpenSlot(ushort handle);
    int ReadRecordAt(ushort handle, CPtrArray & values, long long position);
    CCDocItem * FindDocItem(CCRef const * ref) const;
    CCRef * ScanPlace(wchar_t const *& at) const;
    bool IsAsked(CCRemoteRef const * ref) const;
    CCRefList * LoadPlacedDependents(CCRef const * ref, CCItem *& item);
    int WalkForCycle(CCItem const * item, RemoteRefs & remote);
    void OrderLinearly(std::uint64_t firstNewStamp);
    void Tick();

    int m_bProtected = 0;
    CString m_strPassword;
    ECRecalcRemote m_eRecalcRemote = rrUnknown;
    // Items for which InitFormulaRecalc is running; the first is where the walk began.
    std::vector<CCItem const *> m_FormulaItems;
    unsigned long m_nAllRecalc = 0; // high-water mark of the recalculation list
    std::vector<SCOpenRef> m_OpenRefs;
    std::size_t m_nFirstFree = 0; // every slot before it is open
    unsigned long long m_nOpenStamp = 0;
    SCItemList * m_pDocItems = nullptr;
    int m_nDirtyMarking = 1;
    bool m_bRemoteDependents = false; // a remote dependent was registered some time
    bool m_bTicking = false;          // within OnUpdateIdleRecalc
    bool m_bStoredDependents = false; // dependents were read from a block some time
    bool m_bAddedDependents = false;  // one was registered by no formula some time
    std::uint64_t m_nEdgesMet = 0;    // of the running patch pass
    // The reference that the patch pass is at, with what it resolved to.
    struct {
        CCRef const * ref;
        CCItem * item;
        CCCellManager * owner;
        cells::internal::RecalcList::Node node;
    } m_Walked{};
    cells::internal::ManagerSerial m_nSerial;
};

// Puts the members of a list on the sheet of `ref`, when that is a reference of a sheet.
CVCELLS_API void Adjust3DDependencies(CCRef const * ref, CCRefList * list);

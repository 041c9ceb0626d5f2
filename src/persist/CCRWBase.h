// CCRWBase: the command stream of spreadsheet files, a flat sequence of records.
//
//     class Reader : public CCRWBase { void OnCommand(...) override { ... } };
//     reader.Begin(archive);
//     reader.Read();     // until a command calls Stop
//     reader.End();
//
// A record is a code (16 bits), the length of its payload (16 bits) and the payload. There is no
// header, no end mark and no checksum: a stream that no command stops ends by the end-of-file
// exception of its archive. A handler that does not know a code returns, and the next record
// follows.
#pragma once

#include "platform/Types.h"

#include <cstddef>
#include <memory>

class CArchive;

// Version 1 is the narrow form, in which texts are bytes of the code page; any other is the wide
// form.
enum FileVersion : int { kFileVersionNarrow = 1, kFileVersionWide = 2 };

class CVCELLS_API CCRWBase {
public:
    explicit CCRWBase(enum FileVersion version);
    CCRWBase(CCRWBase const &) = delete;
    CCRWBase & operator=(CCRWBase const &) = delete;
    virtual ~CCRWBase();

    virtual void Begin(CArchive & ar); // borrows the archive until End
    virtual void Read();
    // Ends Read after the present command.
    virtual void Stop() { m_bRunning = 0; }
    virtual void End();
    // The payload stays good until the next command.
    virtual void ReadCommand(unsigned short & code, void *& data, unsigned short & length);
    virtual void WriteCommand(unsigned short code, void const * data, unsigned short length);
    virtual void OnCommand(unsigned short, void *, unsigned short) {}

    void SetAnsi(bool ansi) { m_bAnsi = ansi; }
    bool WriteInAnsi() const { return m_bAnsi; }
    FileVersion version() const { return m_Version; }
    bool IsRunning() const { return m_bRunning != 0; }
    unsigned short GetBufferSize() const { return m_nSize; }

protected:
    // The buffer never shrinks, and grows to exactly the size.
    void GrowDataBuffer(unsigned short size);
    void DoReadLoop();

private:
    int m_bRunning = 0;
    CArchive * m_pArchive = nullptr;
    std::unique_ptr<uchar[]> m_pData;
    unsigned short m_nSize = 0;
    bool m_bAnsi;
    FileVersion m_Version;
};

#include "persist/CCRWBase.h"

#include "platform/CArchive.h"
#include "platform/Exceptions.h"

#include <new>

CCRWBase::CCRWBase(enum FileVersion version)
    : m_bAnsi(version == kFileVersionNarrow), m_Version(version) {}

CCRWBase::~CCRWBase() = default;

void CCRWBase::Begin(CArchive & ar) { m_pArchive = &ar; }

void CCRWBase::End() {
    m_pArchive = nullptr;
    m_bRunning = 0;
}

void CCRWBase::Read() { DoReadLoop(); }

void CCRWBase::DoReadLoop() {
    m_bRunning = 1;
    while (m_bRunning) {
        unsigned short code, length;
        void * data;
        ReadCommand(code, data, length);
        OnCommand(code, data, length);
    }
}

void CCRWBase::GrowDataBuffer(unsigned short size) {
    if (size <= m_nSize) return;
    std::unique_ptr<uchar[]> grown(new (std::nothrow) uchar[size]());
    if (!grown) throw CMemoryException();
    m_pData = std::move(grown);
    m_nSize = size;
}

void CCRWBase::ReadCommand(unsigned short & code, void *& data, unsigned short & length) {
    if (!m_pArchive) throw CArchiveException(CArchiveException::none);
    *m_pArchive >> code >> length;
    GrowDataBuffer(length);
    data = m_pData.get();
    if (length) m_pArchive->Read(data, length);
}

void CCRWBase::WriteCommand(unsigned short code, void const * data, unsigned short length) {
    if (!m_pArchive) throw CArchiveException(CArchiveException::none);
    *m_pArchive << code << length;
    if (length) m_pArchive->Write(data, length);
}

// Root of the platform's object classes: a virtual destructor and a run-time class name.
#pragma once

#include "platform/Types.h"

class CVCELLS_API CObject {
public:
    virtual ~CObject() = default;
    virtual char const * GetRuntimeClass() const { return "CObject"; }
};

#include "platform/Variant.h"

void VariantClear(tagVARIANT & variant) { variant = tagVARIANT(); }

void VariantCopy(tagVARIANT & target, tagVARIANT const & source) { target = source; }

#pragma once

// CObject and its run-time class record: the base of the serialisable engine objects, with
// dynamic creation by class record.

#include <vistrane/export.h>
#include <vistrane/platform/types.h>

class CArchive;
class CObject;

struct VISTRANE_API CRuntimeClass {
    const char* m_lpszClassName;
    int m_nObjectSize;
    UINT m_wSchema;
    CObject* (*m_pfnCreateObject)();  // null for a class that cannot be made dynamically
    const CRuntimeClass* m_pBaseClass;

    // A new object of the class, owned by the caller; null when it cannot be made dynamically.
    CObject* CreateObject() const;
    BOOL IsDerivedFrom(const CRuntimeClass* base) const;
};

class VISTRANE_API CObject {
  public:
    virtual ~CObject();

    virtual const CRuntimeClass* GetRuntimeClass() const;
    // Stores or loads the object by the archive's direction; the base does nothing.
    virtual void Serialize(CArchive& ar);
    BOOL IsSerializable() const;
    BOOL IsKindOf(const CRuntimeClass* cls) const;

    static const CRuntimeClass classCObject;

  protected:
    CObject() = default;
    CObject(const CObject&) = default;
    CObject& operator=(const CObject&) = default;
};

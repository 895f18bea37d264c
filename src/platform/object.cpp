#include <vistrane/platform/object.h>

// CObject is the root: it has no creator, and a schema of 0xFFFF marks it as not serialisable.
const CRuntimeClass CObject::classCObject = {"CObject", sizeof(CObject), 0xFFFF, nullptr, nullptr};

CObject* CRuntimeClass::CreateObject() const {
    return m_pfnCreateObject != nullptr ? m_pfnCreateObject() : nullptr;
}

BOOL CRuntimeClass::IsDerivedFrom(const CRuntimeClass* base) const {
    for (const CRuntimeClass* cls = this; cls != nullptr; cls = cls->m_pBaseClass) {
        if (cls == base) {
            return 1;
        }
    }
    return 0;
}

CObject::~CObject() = default;

const CRuntimeClass* CObject::GetRuntimeClass() const {
    return &classCObject;
}

void CObject::Serialize(CArchive&) {}

BOOL CObject::IsSerializable() const {
    return GetRuntimeClass()->m_wSchema != 0xFFFF ? 1 : 0;
}

BOOL CObject::IsKindOf(const CRuntimeClass* cls) const {
    return GetRuntimeClass()->IsDerivedFrom(cls);
}

#include <vistrane/path/point_path.h>

#include <cstring>
#include <new>

C_PointPath::~C_PointPath() {
    Reset();
}

void C_PointPath::AddSubPath(C_SubPath* sub) {
    sub->SetPrev(nullptr);
    sub->SetNext(m_FirstSubPath);
    if (m_FirstSubPath != nullptr) {
        m_FirstSubPath->SetPrev(sub);
    }
    m_FirstSubPath = sub;
}

int C_PointPath::CreateNewSubPath() {
    C_SubPath* sub = new (std::nothrow) C_SubPath;
    if (sub == nullptr) {
        return 0;
    }
    AddSubPath(sub);
    return 1;
}

void C_PointPath::DeleteSubPath(C_SubPath* sub) {
    C_SubPath* prev = sub->GetPrev();
    C_SubPath* next = sub->GetNext();
    if (prev != nullptr) {
        prev->SetNext(next);
    } else {
        m_FirstSubPath = next;
    }
    if (next != nullptr) {
        next->SetPrev(prev);
    }
    if (m_AppendSubPath == sub) {
        m_AppendSubPath = nullptr;
    }
    delete sub;
    if (m_FirstSubPath == nullptr) {
        Reset();
    }
}

int C_PointPath::GetNSubPaths() const {
    int n = 0;
    for (const C_SubPath* s = m_FirstSubPath; s != nullptr; s = s->GetNext()) {
        ++n;
    }
    return n;
}

void C_PointPath::Reset() {
    C_SubPath* s = m_FirstSubPath;
    while (s != nullptr) {
        C_SubPath* next = s->GetNext();
        delete s;
        s = next;
    }
    m_FirstSubPath = nullptr;
    m_AppendSubPath = nullptr;
    m_SelRectState = 0;
    m_EditState = 0;
}

void C_PointPath::SelectAll(int select) {
    for (C_SubPath* s = m_FirstSubPath; s != nullptr; s = s->GetNext()) {
        s->SelectAll(select);
    }
}

void C_PointPath::FlagAll(PathPointFlags flags, int set) {
    for (C_SubPath* s = m_FirstSubPath; s != nullptr; s = s->GetNext()) {
        s->FlagAll(flags, set);
    }
}

int C_PointPath::HasSubPathWithSelectedAnchors() const {
    for (const C_SubPath* s = m_FirstSubPath; s != nullptr; s = s->GetNext()) {
        if (s->HasSelectedAnchors() == 1) {
            return 1;
        }
    }
    return 0;
}

int C_PointPath::HasSubPathWithAnchorsVisible() const {
    for (const C_SubPath* s = m_FirstSubPath; s != nullptr; s = s->GetNext()) {
        if (s->AreAnchorsVisible() != 0) {
            return 1;
        }
    }
    return 0;
}

void C_PointPath::ReduceAllSubPathsToSegments() {
    for (C_SubPath* s = m_FirstSubPath; s != nullptr; s = s->GetNext()) {
        s->ReduceToSegments();
    }
}

C_PointPath* C_PointPath::CreateClone(int copySelRect) const {
    C_PointPath* clone = new (std::nothrow) C_PointPath;
    if (clone == nullptr) {
        return nullptr;
    }
    const C_SubPath* last = m_FirstSubPath;
    while (last != nullptr && last->GetNext() != nullptr) {
        last = last->GetNext();
    }
    // From the tail back to the head: AddSubPath inserts at the head, so the order is kept.
    for (const C_SubPath* s = last; s != nullptr; s = s->GetPrev()) {
        C_SubPath* copy = s->Clone();
        if (copy == nullptr) {
            delete clone;
            return nullptr;
        }
        clone->AddSubPath(copy);
    }
    if (copySelRect != 0) {
        clone->m_SelRect = m_SelRect;
        clone->m_SelRectState = m_SelRectState;
    }
    return clone;
}

void C_PointPath::CopyFromClone(const C_PointPath* clone) {
    C_SubPath* dst = m_FirstSubPath;
    const C_SubPath* src = clone->m_FirstSubPath;
    for (; dst != nullptr && src != nullptr; dst = dst->GetNext(), src = src->GetNext()) {
        if (dst->GetCount() > 0) {
            std::memcpy(dst->GetPoints(), src->GetPoints(),
                        static_cast<size_t>(dst->GetCount()) * sizeof(S_PathPoint));
        }
    }
}

namespace {

// A new open piece at the head of `path` holding records first .. first + n - 1 of `points`,
// anchors visible and all selected; an allocation failure skips the piece (an empty sub-path
// left behind is removed with the others at the end of OnDelete).
void AddPiece(C_PointPath* path, const S_PathPoint* points, int first, int n) {
    if (path->CreateNewSubPath() == 0) {
        return;
    }
    C_SubPath* piece = path->GetFirstSubPath();
    if (piece->AddBlankPoints(n, 1) == 0) {
        return;
    }
    std::memcpy(piece->GetPoints(), points + first, static_cast<size_t>(n) * sizeof(S_PathPoint));
    piece->Close(0);
    piece->ReduceToSegments();
    piece->SetAnchorsVisible(1);
    piece->SelectAll(1);
}

}  // namespace

void C_PointPath::OnDelete() {
    if (m_AppendSubPath != nullptr && m_MagSnapSetting != 0) {
        C_SubPath* run = m_AppendSubPath;
        S_PathPoint* p = run->GetPoints();
        const int n = run->GetCount();
        int k = -1;
        if (n > 0) {
            const unsigned char serial = p[n - 1].m_Attributes & PPA_SERIAL;
            for (int i = n - 1; i >= 0; --i) {
                if ((p[i].m_Attributes & PPA_SERIAL) != serial) {
                    k = i;
                    break;
                }
            }
        }
        if (k >= 0) {
            // Only the last magnetic run goes; append mode stays.
            p[k].m_NextDirection = CPoint();
            run->SelectAll(0);
            for (int i = k + 1; i < n; ++i) {
                p[i].m_Flags |= PPF_SELECTED;
            }
            run->DelSelectedPoints();
            return;
        }
        ReduceAllSubPathsToSegments();
        run->SetAnchorsVisible(1);
    }
    ExitAppendMode();
    if (HasSubPathWithAnchorsVisible() == 0) {
        Reset();
        return;
    }
    // Pieces go to the head, behind the scan, which moves towards the tail.
    for (C_SubPath* s = m_FirstSubPath; s != nullptr; s = s->GetNext()) {
        if (s->AreAnchorsVisible() == 0) {
            continue;
        }
        const S_PathPoint* p = s->GetPoints();
        const int n = s->GetCount();
        int runStart = 0;
        bool anySelected = false;
        for (int i = 0; i < n; ++i) {
            if ((p[i].m_Flags & PPF_SELECTED) == 0) {
                continue;
            }
            anySelected = true;
            if (i > runStart) {
                AddPiece(this, p, runStart, i - runStart);
            }
            runStart = i + 1;
        }
        if (anySelected && runStart < n) {
            AddPiece(this, p, runStart, n - runStart);
        }
        // Emptied whole even with nothing selected: Delete removes the edited sub-path.
        s->SelectAll(1);
        s->DelSelectedPoints();
    }
    C_SubPath* s = m_FirstSubPath;
    while (s != nullptr) {
        C_SubPath* next = s->GetNext();
        if (s->GetCount() == 0) {
            DeleteSubPath(s);
        }
        s = next;
    }
}

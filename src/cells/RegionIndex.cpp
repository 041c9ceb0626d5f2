// A treap (R. Seidel, C. R. Aragon, Randomized search trees), augmented for stabbing queries.
#include "cells/RegionIndex.h"

#include "formula/CCRefList.h"

#include <algorithm>

namespace cells {
namespace {

// The order of regions of one span: by top, then by bottom.
unsigned long KeyOf(ushort top, ushort bottom) {
    return static_cast<unsigned long>(top) << 16 | bottom;
}

} // namespace

RegionIndex::RegionIndex() = default;
RegionIndex::~RegionIndex() = default;

void RegionIndex::Reach(Node & node) {
    node.reach = node.bottom;
    if (node.left) node.reach = std::max(node.reach, node.left->reach);
    if (node.right) node.reach = std::max(node.reach, node.right->reach);
}

void RegionIndex::Rotate(Tree & tree, bool left) {
    Tree up = std::move(left ? tree->right : tree->left);
    (left ? tree->right : tree->left) = std::move(left ? up->left : up->right);
    Reach(*tree);
    (left ? up->left : up->right) = std::move(tree);
    tree = std::move(up);
    Reach(*tree);
}

RegionIndex::Node & RegionIndex::Insert(Tree & tree, CCRegionRef const & region) {
    if (!tree) {
        m_nSeed = m_nSeed * 1664525u + 1013904223u;
        tree = std::make_unique<Node>();
        tree->top = region.top;
        tree->bottom = tree->reach = region.bottom;
        tree->priority = m_nSeed;
        return *tree;
    }
    unsigned long const key = KeyOf(region.top, region.bottom),
                        own = KeyOf(tree->top, tree->bottom);
    if (key == own) return *tree;
    bool const goLeft = key < own;
    Tree & child = goLeft ? tree->left : tree->right;
    Node & node = Insert(child, region);
    Reach(*tree);
    if (child->priority > tree->priority) Rotate(tree, !goLeft);
    return node;
}

void RegionIndex::Erase(Tree & tree, CCRegionRef const & region) {
    if (!tree) return;
    unsigned long const key = KeyOf(region.top, region.bottom),
                        own = KeyOf(tree->top, tree->bottom);
    if (key != own) {
        Erase(key < own ? tree->left : tree->right, region);
    } else if (!tree->left || !tree->right) {
        Tree rest = std::move(tree->left ? tree->left : tree->right);
        tree = std::move(rest);
        return;
    } else {
        bool const left = tree->right->priority > tree->left->priority;
        Rotate(tree, left);
        Erase(left ? tree->left : tree->right, region);
    }
    Reach(*tree);
}

RegionIndex::Node * RegionIndex::Find(CCRegionRef const & region) const {
    auto const span = m_Spans.find(ColumnsOf(region));
    Node * node = span == m_Spans.end() ? nullptr : span->second.get();
    unsigned long const key = KeyOf(region.top, region.bottom);
    while (node && KeyOf(node->top, node->bottom) != key)
        node = (key < KeyOf(node->top, node->bottom) ? node->left : node->right).get();
    return node;
}

bool RegionIndex::Register(CCRegionRef const & region, CCRef const * dependent) {
    Node & node = Insert(m_Spans[ColumnsOf(region)], region);
    if (node.dependents.Find(dependent) >= 0) return false;
    node.dependents.Add(dependent->Copy());
    return true;
}

bool RegionIndex::UnRegister(CCRegionRef const & region, CCRef const * dependent) {
    Node * const node = Find(region);
    int const slot = node ? node->dependents.Find(dependent) : -1;
    if (slot < 0) return false;
    node->dependents.Remove(slot);
    if (node->dependents.Count() == 0) {
        auto const span = m_Spans.find(ColumnsOf(region));
        Erase(span->second, region);
        if (!span->second) m_Spans.erase(span);
    }
    return true;
}

void RegionIndex::Update(CCRegionRef const & region, CCRef const * old, CCRef const * now) {
    Node * const node = Find(region);
    int const slot = node ? node->dependents.Find(old) : -1;
    if (slot >= 0)
        node->dependents.Replace(slot, now->Copy());
    else
        Register(region, now);
}

// Calls visit with every node that holds the row, until it gives true.
template <typename Visit>
bool RegionIndex::Stab(Node const * node, ushort row, Visit && visit) {
    if (!node || node->reach < row) return false;
    if (Stab(node->left.get(), row, visit)) return true;
    if (node->top > row) return false;
    if (node->bottom >= row && visit(*node)) return true;
    return Stab(node->right.get(), row, visit);
}

template <typename Visit>
bool RegionIndex::StabAll(uchar col, ushort row, Visit && visit) const {
    for (auto const & [columns, tree] : m_Spans) {
        if (columns >> 8 > col) return false;
        if ((columns & 0xFF) >= col && Stab(tree.get(), row, visit)) return true;
    }
    return false;
}

bool RegionIndex::Holds(uchar col, ushort row) const {
    return StabAll(col, row, [](Node const &) { return true; });
}

CCRefList * RegionIndex::LoadDependents(uchar col, ushort row, CCRefList * behind) const {
    StabAll(col, row, [&](Node const & node) {
        node.dependents.ForEach([&](CCRef * ref) {
            CCRefList * const item = internal::NewRefNode(ref, false);
            item->m_pNext = behind;
            behind = item;
        });
        return false;
    });
    return behind;
}

CCRefList * RegionIndex::LoadDependents(CCRegionRef const & region) const {
    CCRefList * list = nullptr;
    if (Node const * node = Find(region))
        node->dependents.ForEach([&](CCRef * ref) {
            CCRefList * const item = internal::NewRefNode(ref, false);
            item->m_pNext = list;
            list = item;
        });
    return list;
}

} // namespace cells

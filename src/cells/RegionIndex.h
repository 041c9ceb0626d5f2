// RegionIndex: who depends on which rectangle of a sheet.
//
// For hosts with a grid. A formula that reads a region registers itself once, with the region, and
// never with each cell of it. The index answers which dependents a cell has through the regions
// that hold it, in time that grows with the hits and the logarithm of the regions: regions with the
// same columns stand in one tree, ordered by their top row, and every subtree knows how far down
// its regions reach.
//
//     index.Register(region, dependent);
//     CCRefList * list = index.LoadDependents(col, row, nullptr);
#pragma once

#include "cells/DependentArray.h"
#include "formula/CCRegionRef.h"

#include <map>
#include <memory>
#include <vector>

struct CCRefList;

namespace cells {

class CVCELLS_API RegionIndex {
public:
    RegionIndex();
    RegionIndex(RegionIndex const &) = delete;
    RegionIndex & operator=(RegionIndex const &) = delete;
    ~RegionIndex();

    bool IsEmpty() const { return m_Spans.empty(); }
    // True when the dependent is new. It is copied; it must carry its sheet.
    bool Register(CCRegionRef const & region, CCRef const * dependent);
    bool UnRegister(CCRegionRef const & region, CCRef const * dependent);
    // Puts a dependent in the place of another.
    void Update(CCRegionRef const & region, CCRef const * old, CCRef const * now);

    // Whether any region with dependents holds the cell.
    bool Holds(uchar col, ushort row) const;
    // The dependents of all regions that hold the cell, linked before `behind`. The nodes are the
    // caller's and borrow the references, which live until the next change of the index.
    CCRefList * LoadDependents(uchar col, ushort row, CCRefList * behind) const;
    // The dependents of exactly this region.
    CCRefList * LoadDependents(CCRegionRef const & region) const;
    // Calls visit(region, dependent) for every pair.
    template <typename Visit>
    void ForEach(Visit && visit) const {
        for (auto const & [columns, tree] : m_Spans) Walk(tree.get(), columns, visit);
    }

private:
    using Columns = unsigned short; // left << 8 | right

    // A treap by (top, bottom); `reach` is the largest bottom below and at the node.
    struct Node {
        ushort top, bottom, reach;
        unsigned priority;
        internal::DependentArray dependents;
        std::unique_ptr<Node> left, right;
    };
    using Tree = std::unique_ptr<Node>;

    static Columns ColumnsOf(CCRegionRef const & region) {
        return static_cast<Columns>(region.left << 8 | region.right);
    }
    static void Reach(Node & node);
    static void Rotate(Tree & tree, bool left);
    Node & Insert(Tree & tree, CCRegionRef const & region);
    static void Erase(Tree & tree, CCRegionRef const & region);
    Node * Find(CCRegionRef const & region) const;
    template <typename Visit>
    static bool Stab(Node const * node, ushort row, Visit && visit);
    template <typename Visit>
    bool StabAll(uchar col, ushort row, Visit && visit) const;

    template <typename Visit>
    static void Walk(Node const * node, Columns columns, Visit & visit) {
        if (!node) return;
        Walk(node->left.get(), columns, visit);
        CCRegionRef const region(uchar(columns >> 8), node->top, uchar(columns), node->bottom);
        node->dependents.ForEach([&](CCRef * dependent) { visit(region, dependent); });
        Walk(node->right.get(), columns, visit);
    }

    std::map<Columns, Tree> m_Spans;
    unsigned m_nSeed = 1;
};

} // namespace cells

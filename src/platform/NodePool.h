// A free list of nodes of one size, refilled in blocks of 1000 that are never given back.
//
// Nodes of lists and small references come and go all the time; a pool makes both a few
// instructions. The blocks stay reachable, so that leak checkers are silent, and node addresses
// never move. One thread, like the rest of the engine.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <new>

namespace cells::internal {

constexpr std::size_t kPoolBlockNodes = 1000;

template <typename Node>
class NodePool {
public:
    // Raw memory for one node; throws std::bad_alloc.
    static void * Take() {
        if (!s_Free) Refill();
        Slot * slot = s_Free;
        s_Free = slot->next;
        return slot;
    }

    static void Give(void * memory) noexcept {
        Slot * slot = static_cast<Slot *>(memory);
        slot->next = s_Free;
        s_Free = slot;
    }

private:
    union Slot {
        Slot * next;
        alignas(Node) unsigned char bytes[sizeof(Node)];
    };
    struct Block {
        Slot slots[kPoolBlockNodes];
        Block * next;
    };

    static void Refill() {
        Block * block = static_cast<Block *>(::operator new(sizeof(Block)));
        block->next = s_Blocks;
        s_Blocks = block;
        for (std::size_t i = kPoolBlockNodes; i-- > 0;) Give(&block->slots[i]);
    }

    static inline Slot * s_Free = nullptr;
    static inline Block * s_Blocks = nullptr;
};

// Memory for objects of one size that live long: references, formula nodes.
//
// Blocks of 64 KiB are filled from the lowest free place up, so that what is made together stands
// together, also after much has come and gone; a bit a place tells what is free. Calculation walks
// such objects by the ten thousand, and their neighbourhood is what it costs.
template <std::size_t Size, std::size_t Alignment>
class ObjectPool {
public:
    static void * Take() {
        if (!s_Open) s_Open = s_Last = NewBlock();
        Block & block = *s_Open;
        while (!block.free[block.hint]) ++block.hint;
        std::uint64_t & word = block.free[block.hint];
        std::size_t const slot = block.hint * 64 + std::size_t(std::countr_zero(word));
        word &= word - 1;
        if (--block.count == 0) {
            s_Open = block.next;
            if (!s_Open) s_Last = nullptr;
        }
        return block.Places() + slot * kStride;
    }

    static void Give(void * memory) noexcept {
        auto const address = reinterpret_cast<std::uintptr_t>(memory);
        Block & block = *reinterpret_cast<Block *>(address & ~std::uintptr_t(kBlockSize - 1));
        std::size_t const slot =
            (address - reinterpret_cast<std::uintptr_t>(block.Places())) / kStride;
        block.free[slot / 64] |= std::uint64_t(1) << slot % 64;
        block.hint = std::min(block.hint, slot / 64);
        if (block.count++ > 0) return;
        block.next = nullptr;
        (s_Last ? s_Last->next : s_Open) = &block;
        s_Last = &block;
    }

private:
    static constexpr std::size_t kBlockSize = 65536;
    static constexpr std::size_t kStride = (Size + Alignment - 1) / Alignment * Alignment;
    static constexpr std::size_t kWords = kBlockSize / kStride / 64 + 1;

    struct Block {
        Block * next;      // of those with free places
        Block * older;     // of all
        std::size_t count; // free places
        std::size_t hint;  // no word before this one has a free place
        std::uint64_t free[kWords];
        unsigned char * Places() {
            std::size_t const header = (sizeof(Block) + Alignment - 1) / Alignment * Alignment;
            return reinterpret_cast<unsigned char *>(this) + header;
        }
    };
    static constexpr std::size_t kPlaces = (kBlockSize - sizeof(Block) - Alignment) / kStride;

    static Block * NewBlock() {
        void * memory = std::aligned_alloc(kBlockSize, kBlockSize);
        if (!memory) throw std::bad_alloc();
        Block * block = new (memory) Block{nullptr, s_All, kPlaces, 0, {}};
        for (std::size_t slot = 0; slot < kPlaces; ++slot)
            block->free[slot / 64] |= std::uint64_t(1) << slot % 64;
        return s_All = block;
    }

    static inline Block * s_Open = nullptr; // the first block with free places
    static inline Block * s_Last = nullptr;
    static inline Block * s_All = nullptr; // keeps every block reachable
};

// Makes `new` and `delete` of a class use a pool. A class derived from it with more members falls
// back to the heap. Under an address checker every object is its own block, so that misuse shows.
template <typename T>
class Pooled {
public:
#if !defined(__SANITIZE_ADDRESS__)
    static void * operator new(std::size_t size) {
        return size == sizeof(T) ? ObjectPool<sizeof(T), alignof(T)>::Take() : ::operator new(size);
    }
    static void operator delete(void * memory, std::size_t size) noexcept {
        if (size == sizeof(T))
            ObjectPool<sizeof(T), alignof(T)>::Give(memory);
        else
            ::operator delete(memory);
    }
#endif
};

} // namespace cells::internal

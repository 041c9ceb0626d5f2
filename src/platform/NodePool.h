// A free list of nodes of one size, refilled in blocks of 1000 that are never given back.
//
// Nodes of lists and small references come and go all the time; a pool makes both a few
// instructions. The blocks stay reachable, so that leak checkers are silent, and node addresses
// never move. One thread, like the rest of the engine.
#pragma once

#include <cstddef>
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

// Makes `new` and `delete` of a class use its pool. A class derived from it with more members falls
// back to the heap. Under an address checker every object is its own block, so that misuse shows.
template <typename T>
class Pooled {
public:
#if !defined(__SANITIZE_ADDRESS__)
    static void * operator new(std::size_t size) {
        return size == sizeof(T) ? NodePool<T>::Take() : ::operator new(size);
    }
    static void operator delete(void * memory, std::size_t size) noexcept {
        if (size == sizeof(T))
            NodePool<T>::Give(memory);
        else
            ::operator delete(memory);
    }
#endif
};

} // namespace cells::internal

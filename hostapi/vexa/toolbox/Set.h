#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string>
#include <vector>

#include "vexa/Export.h"

struct Set_s;

namespace vexa::toolbox {

/// A set of integers from 0 to 2^63-1, with a text form.
///
///     Set zones;
///     zones.assign("[1-3, 5, 10-20:5]");
///     zones.toString();                   // "[1-3,5,10,15,20]"
///     for (int64_t zone : zones) show(zone);
///
/// Text form: items between brackets, separated by commas, in any order, repeated at will. An item is a member, a
/// range `a-b` (a <= b), or a stepped range `a-b:s` (s >= 1: a, a+s, ... up to b). Blanks and tabs may stand between
/// any two of the signs and numbers.
///
///     []              -> the empty set
///     [5,1-3,2]       -> 1, 2, 3, 5
///     [ 0 - 10 : 5 ]  -> 0, 5, 10
///     [007]           -> 7
///     [1,]  [,1]  [3-1]  [1-5:0]  [1:2]  [-1]  [+1]  [1  (1)  [1]x  [9223372036854775808]    refused
///
/// The stepped ranges of one text may expand to 2^24 members in all (a step of 1 does not count); more is refused,
/// so that a short text cannot exhaust the memory.
///
/// Structure: one flat vector of runs of consecutive members, sorted, disjoint and never adjacent. `[1-1000000000]`
/// is one run of 16 bytes. A flat vector, because sets are read far more often than changed, and reading wants
/// neither one allocation nor one pointer per run (the benchmarks compare it with a tree of intervals).
///
/// Costs, in runs r: assign() and toString() linear in the text, contains() O(log r), insert() and erase()
/// O(log r) to find the place and up to O(r) to move what follows; copy, equality and size() O(r).
///
/// Errors:    InvalidArgumentException for a text or a member that is refused, the set then stays as it was;
///            OutOfMemoryException from assign(), `std::bad_alloc` from all else, when memory runs out.
/// Ownership: a copy is independent of its source.
/// Threads:   reading is safe from any thread as long as none writes.
class VEXAHOSTLIBS_API Set {
public:
    /// A run of consecutive members, both ends included.
    struct Range {
        int64_t first;  ///< lowest member
        int64_t last;   ///< highest member

        /// Whether both ends are the same.
        friend bool operator==(const Range& a, const Range& b) { return a.first == b.first && a.last == b.last; }
        /// Whether an end differs.
        friend bool operator!=(const Range& a, const Range& b) { return !(a == b); }
    };

    class const_iterator;
    using iterator = const_iterator;  ///< members cannot be changed in place
    using value_type = int64_t;       ///< a member

    /// Makes an empty set.
    Set();
    /// Copies the members of a host set. \p handle stays with its owner; null stands for the empty set.
    explicit Set(Set_s* handle);
    /// Copies the members.
    Set(const Set&);
    /// Takes the members of the other set, which is empty afterwards and can be used again.
    Set(Set&&) noexcept;
    /// Copies the members.
    Set& operator=(const Set&);
    /// Takes the members of \p other, which is empty afterwards and can be used again. A set moved to itself keeps its
    /// members.
    Set& operator=(Set&& other) noexcept;
    virtual ~Set();

    /// Removes all members.
    virtual void clear();

    /// Replaces the members by those written in \p text (see the text form above). Linear in the text.
    /// \throws InvalidArgumentException when the text is refused: "Expected ... at column N of set: ...", columns
    ///         counted from 1, the set cut when long. The set stays as it was.
    /// \throws OutOfMemoryException "Out of memory". The set stays as it was.
    virtual void assign(std::string text);

    /// Returns the canonical text: ascending, each run of two or more members as `first-last`, no blanks.
    virtual std::string toString() const;

    /// Whether there are no members.
    bool isEmpty() const;
    /// The number of members, at most 2^63. Linear in the number of runs.
    uint64_t size() const;
    /// Whether \p member is one. Any value may be asked for.
    bool contains(int64_t member) const;

    /// Adds one member.
    /// \throws InvalidArgumentException "Expected a set member of 0 or more, but got N".
    void insert(int64_t member);
    /// Adds the members \p first to \p last.
    /// \throws InvalidArgumentException as above, or "Expected a range in ascending order, but got A to B".
    void insert(int64_t first, int64_t last);
    /// Removes one member, if it is one.
    /// \throws InvalidArgumentException as insert().
    void erase(int64_t member);
    /// Removes those of the members \p first to \p last that are there.
    /// \throws InvalidArgumentException as insert().
    void erase(int64_t first, int64_t last);

    /// The lowest member. Iterators last until the set is changed.
    const_iterator begin() const;
    /// Past the highest member.
    const_iterator end() const;
    /// The runs, ascending; the view lasts until the set is changed.
    const std::vector<Range>& ranges() const;

    /// Whether both hold the same members. Linear in the number of runs.
    friend bool operator==(const Set& a, const Set& b) { return a.m_ranges == b.m_ranges; }
    /// Whether one holds a member that the other does not.
    friend bool operator!=(const Set& a, const Set& b) { return !(a == b); }

private:
    std::vector<Range> m_ranges;
};

/// Walks the members of a Set in ascending order. The members are made on the way, so they are handed out by value.
class Set::const_iterator {
public:
    using iterator_category = std::forward_iterator_tag;  ///< it only goes forward
    using value_type = int64_t;                           ///< a member
    using difference_type = std::ptrdiff_t;               ///< a number of steps
    using pointer = const int64_t*;                       ///< there is no `->`: a member has no parts
    using reference = int64_t;                            ///< handed out by value

    /// An iterator over nothing.
    const_iterator() = default;

    /// The member.
    int64_t operator*() const { return m_member; }
    /// Moves to the next member.
    const_iterator& operator++() {
        if (m_member != m_range->last) {
            ++m_member;
        } else {
            ++m_range;
            m_member = m_range == m_end ? 0 : m_range->first;
        }
        return *this;
    }
    /// Moves to the next member; returns where it was.
    const_iterator operator++(int) {
        const const_iterator before = *this;
        ++*this;
        return before;
    }

    /// Whether both stand on the same member of the same set.
    friend bool operator==(const const_iterator& a, const const_iterator& b) {
        return a.m_range == b.m_range && a.m_member == b.m_member;
    }
    /// Whether they stand on different members.
    friend bool operator!=(const const_iterator& a, const const_iterator& b) { return !(a == b); }

private:
    friend class Set;
    const_iterator(const Range* range, const Range* end)
        : m_range(range), m_end(end), m_member(range == end ? 0 : range->first) {}

    const Range* m_range = nullptr;
    const Range* m_end = nullptr;
    int64_t m_member = 0;
};

}  // namespace vexa::toolbox

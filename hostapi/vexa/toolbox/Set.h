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
/// Text form: items in brackets, separated by commas, in any order. Items may repeat or overlap. An item is a member, a
/// range `a-b` (a <= b), or a stepped range `a-b:s` (s >= 1; its members are a, a+s, ... up to b). Blanks and tabs may
/// separate numbers and signs.
///
///     []              -> the empty set
///     [5,1-3,2]       -> 1, 2, 3, 5
///     [ 0 - 10 : 5 ]  -> 0, 5, 10
///     [007]           -> 7
///     [1,]  [,1]  [3-1]  [1-5:0]  [1:2]  [-1]  [+1]  [1  (1)  [1]x  [9223372036854775808]    refused
///
/// The stepped ranges of one text may have at most 2^24 members together, so that a short text cannot exhaust the
/// memory. Ranges with a step of 1 do not count. A text with more is refused.
///
/// Structure: a sorted vector of runs, that is, of ranges of consecutive members. Runs neither overlap nor adjoin.
/// `[1-1000000000]` is a single run of 16 bytes. Programs read sets far more often than they change them, and a vector
/// needs no allocation and no pointer per run (the benchmarks compare it with a tree of intervals).
///
/// Cost, for r runs: assign() and toString() take time linear in the text. contains() takes O(log r). insert() and
/// erase() take O(log r) to find the place and up to O(r) to move the runs after it. Copying, comparing and size() take
/// O(r).
///
/// Errors:    InvalidArgumentException if a text or a member is refused; the set is then unchanged. If memory runs out,
///            assign() throws OutOfMemoryException and every other operation throws `std::bad_alloc`.
/// Ownership: a copy is independent of its source.
/// Threads:   any thread may read a set while no thread changes it.
class VEXAHOSTLIBS_API Set {
public:
    /// A run of consecutive members, both ends included.
    struct Range {
        int64_t first;  ///< lowest member
        int64_t last;   ///< highest member

        /// Returns true if both ends are equal.
        friend bool operator==(const Range& a, const Range& b) { return a.first == b.first && a.last == b.last; }
        /// Returns true if an end differs.
        friend bool operator!=(const Range& a, const Range& b) { return !(a == b); }
    };

    class const_iterator;
    using iterator = const_iterator;  ///< members cannot be changed in place
    using value_type = int64_t;       ///< a member

    /// Creates an empty set.
    Set();
    /// Copies the members of a host set. The caller still owns \p handle. A null handle gives an empty set.
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

    /// Replaces the members by those in \p text, which has the text form above.
    /// \throws InvalidArgumentException "Expected ... at column N of set: ..." if the text is refused. Columns start at
    ///         1, and the message shows only a part of a long text. The set is unchanged.
    /// \throws OutOfMemoryException "Out of memory" if memory runs out. The set is unchanged.
    virtual void assign(std::string text);

    /// Returns the canonical text: members in ascending order, each run of two or more members as `first-last`, no
    /// blanks.
    virtual std::string toString() const;

    /// Returns true if the set has no members.
    bool isEmpty() const;
    /// Returns the number of members, at most 2^63.
    uint64_t size() const;
    /// Returns true if \p member is in the set. The argument may be negative.
    bool contains(int64_t member) const;

    /// Adds one member.
    /// \throws InvalidArgumentException "Expected a set member of 0 or more, but got N" if \p member is negative.
    void insert(int64_t member);
    /// Adds the members from \p first to \p last.
    /// \throws InvalidArgumentException "Expected a set member of 0 or more, but got N" if an argument is negative, or
    ///         "Expected a range in ascending order, but got A to B" if \p first is greater than \p last.
    void insert(int64_t first, int64_t last);
    /// Removes one member. Does nothing if it is not in the set.
    /// \throws InvalidArgumentException as insert() does.
    void erase(int64_t member);
    /// Removes all members from \p first to \p last.
    /// \throws InvalidArgumentException as insert() does.
    void erase(int64_t first, int64_t last);

    /// Returns an iterator at the lowest member. Iterators are valid until the set changes.
    const_iterator begin() const;
    /// Returns the iterator past the highest member.
    const_iterator end() const;
    /// Returns the runs in ascending order. They are valid until the set changes.
    const std::vector<Range>& ranges() const;

    /// Returns true if both sets have the same members.
    friend bool operator==(const Set& a, const Set& b) { return a.m_ranges == b.m_ranges; }
    /// Returns true if one set has a member that the other does not have.
    friend bool operator!=(const Set& a, const Set& b) { return !(a == b); }

private:
    std::vector<Range> m_ranges;
};

/// Iterates over the members of a Set in ascending order. It computes the members, so it returns them by value.
class Set::const_iterator {
public:
    using iterator_category = std::forward_iterator_tag;  ///< it only moves forward
    using value_type = int64_t;                           ///< a member
    using difference_type = std::ptrdiff_t;               ///< a number of steps
    using pointer = const int64_t*;                       ///< the iterator has no `->`: a member has no parts
    using reference = int64_t;                            ///< members are returned by value

    /// Creates an iterator without a set.
    const_iterator() = default;

    /// Returns the member.
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
    /// Moves to the next member. Returns the iterator as it was before.
    const_iterator operator++(int) {
        const const_iterator before = *this;
        ++*this;
        return before;
    }

    /// Returns true if both iterators are at the same member of the same set.
    friend bool operator==(const const_iterator& a, const const_iterator& b) {
        return a.m_range == b.m_range && a.m_member == b.m_member;
    }
    /// Returns true if the iterators are at different members.
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

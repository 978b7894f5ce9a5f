#pragma once

#include "programme/Condition.h"

#include <cstddef>
#include <iterator>
#include <memory>
#include <vector>

namespace qv {

// The ordered collection of programme lines. Positions are 1-based and there
// are no keys. The collection owns its lines: Add stores a copy, Item hands
// out the stored line itself, so a change through it changes the collection.
// Lines live on the heap, so an Item reference stays valid while other lines
// are added or removed; it dies with its own Remove.
class Conditions {
    using Storage = std::vector<std::unique_ptr<Condition>>;

    template <typename Base, typename Value> class Iterator {
    public:
        using iterator_category = std::random_access_iterator_tag;
        using value_type = Condition;
        using difference_type = std::ptrdiff_t;
        using pointer = Value*;
        using reference = Value&;

        Iterator() = default;
        explicit Iterator(Base base) : base_(base) {}
        reference operator*() const { return **base_; }
        pointer operator->() const { return base_->get(); }
        Iterator& operator++() {
            ++base_;
            return *this;
        }
        Iterator operator++(int) {
            Iterator before = *this;
            ++base_;
            return before;
        }
        bool operator==(const Iterator&) const = default;

    private:
        Base base_{};
    };

public:
    using iterator = Iterator<Storage::const_iterator, Condition>;
    using const_iterator = Iterator<Storage::const_iterator, const Condition>;

    Conditions() = default;
    Conditions(Conditions&&) = default;
    Conditions& operator=(Conditions&&) = default;

    // Stores a copy of `cond`: the 32 plain fields and elements 0 to 7 of
    // the indexed properties; element 8 of the copy is 0. The copy goes in
    // front of position `before` when `before` is 1..Count, and at the end
    // when `before` is 0, beyond Count, or the collection is empty. Returns
    // the stored copy; nullptr, with nothing stored, when a negative `before`
    // reaches a non-empty collection.
    Condition* Add(const Condition& cond, int before = 0);

    // The stored line at 1-based `position`; nullptr outside 1..Count.
    Condition* Item(int position);
    const Condition* Item(int position) const;

    int Count() const { return static_cast<int>(lines_.size()); }

    // Removes the line at `position` (the later lines move up by one) and
    // destroys it: a caller that means to put it back copies it first.
    // false, and nothing removed, outside 1..Count.
    bool Remove(int position);

    iterator begin() { return iterator(lines_.cbegin()); }
    iterator end() { return iterator(lines_.cend()); }
    const_iterator begin() const { return const_iterator(lines_.cbegin()); }
    const_iterator end() const { return const_iterator(lines_.cend()); }

private:
    Storage lines_;
};

} // namespace qv

#include "programme/Conditions.h"

namespace qv {

Condition* Conditions::Add(const Condition& cond, int before) {
    const int count = Count();
    const bool insert = before != 0 && count != 0 && before <= count;
    if (insert && before < 0) {
        return nullptr;
    }

    // A plain copy would carry element 8 along; the lines in the collection
    // never hold one, whatever the caller's object holds.
    auto copy = std::make_unique<Condition>(cond);
    const int last = Condition::IndexedSize - 1;
    copy->setNumero(last, 0);
    copy->setOperateur(last, 0);
    copy->setTempo(last, 0);
    copy->setValeur1(last, 0.0);
    copy->setValeur2(last, 0.0);

    Condition* stored = copy.get();
    if (insert) {
        lines_.insert(lines_.begin() + (before - 1), std::move(copy));
    } else {
        lines_.push_back(std::move(copy));
    }
    return stored;
}

Condition* Conditions::Item(int position) {
    if (position < 1 || position > Count()) {
        return nullptr;
    }
    return lines_[static_cast<std::size_t>(position - 1)].get();
}

const Condition* Conditions::Item(int position) const {
    return const_cast<Conditions*>(this)->Item(position);
}

bool Conditions::Remove(int position) {
    if (position < 1 || position > Count()) {
        return false;
    }
    lines_.erase(lines_.begin() + (position - 1));
    return true;
}

} // namespace qv

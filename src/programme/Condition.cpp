#include "programme/Condition.h"

namespace qv {

namespace {

template <typename T>
std::optional<T> element(const std::array<T, Condition::IndexedSize>& values, int index) {
    if (!Condition::inBounds(index)) {
        return std::nullopt;
    }
    return values[static_cast<std::size_t>(index)];
}

template <typename T>
bool setElement(std::array<T, Condition::IndexedSize>& values, int index, T value) {
    if (!Condition::inBounds(index)) {
        return false;
    }
    values[static_cast<std::size_t>(index)] = value;
    return true;
}

} // namespace

std::optional<std::uint8_t> Condition::Numero(int index) const {
    return element(numero_, index);
}
bool Condition::setNumero(int index, std::uint8_t value) {
    return setElement(numero_, index, value);
}

std::optional<std::uint8_t> Condition::Operateur(int index) const {
    return element(operateur_, index);
}
bool Condition::setOperateur(int index, std::uint8_t value) {
    return setElement(operateur_, index, value);
}

std::optional<std::int16_t> Condition::tempo(int index) const {
    return element(tempo_, index);
}
bool Condition::setTempo(int index, std::int16_t value) {
    return setElement(tempo_, index, value);
}

std::optional<double> Condition::Valeur1(int index) const {
    return element(valeur1_, index);
}
bool Condition::setValeur1(int index, double value) {
    return setElement(valeur1_, index, value);
}

std::optional<double> Condition::Valeur2(int index) const {
    return element(valeur2_, index);
}
bool Condition::setValeur2(int index, double value) {
    return setElement(valeur2_, index, value);
}

} // namespace qv

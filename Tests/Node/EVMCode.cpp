#include "EVMCode.h"

#include "Contract.h"

#include <QtEndian>

namespace torvane {

namespace {

constexpr char push2 = 0x61;
constexpr char push32 = 0x7f;
constexpr quint64 wordSize = 32;
constexpr quint64 selectorBits = 224; // Which stand below a selector in the first word of the input.

/// 2^128.
Word farAway() {
    QByteArray bytes(Word::size, '\0');
    bytes[15] = 1;
    return Word(QByteArrayView(bytes));
}

/// The selector, as a number.
Word selectorOf(const QString& signature) {
    return Word(contractCall({}, signature).data.sliced(2, 8).toULongLong(nullptr, 16));
}

} // namespace

EVMCode& EVMCode::put(std::initializer_list<Operation> operations) {
    for (const Operation operation : operations)
        m_bytes.append(static_cast<char>(operation));
    return *this;
}

EVMCode& EVMCode::push(const Word& word) {
    m_bytes.append(push32).append(word.bytes());
    return *this;
}

EVMCode& EVMCode::keep(quint64 place) {
    return push(place * wordSize).put({storeMemory});
}

EVMCode& EVMCode::giveBackWords(quint64 count) {
    return push(count * wordSize).push(quint64{0}).put({giveBack});
}

EVMCode& EVMCode::refuseZero() {
    const qsizetype target = pushTarget();
    put({jumpIf}).push(quint64{0}).push(quint64{0}).put({refuse});
    setTarget(target);
    return *this;
}

qsizetype EVMCode::pushTarget() {
    m_bytes.append(push2).append("\0\0", 2);
    return m_bytes.size() - 2;
}

void EVMCode::setTarget(qsizetype place) {
    qToBigEndian(static_cast<quint16>(m_bytes.size()), m_bytes.data() + place);
    put({here});
}

QByteArray evmContract(const QList<EVMFunction>& functions) {
    EVMCode code;
    code.push(quint64{0}).put({EVMCode::loadInput}).push(selectorBits).put({EVMCode::shiftRight});
    QList<qsizetype> targets;
    for (const EVMFunction& function : functions) {
        code.put({EVMCode::duplicate}).push(selectorOf(function.signature)).put({EVMCode::equal});
        targets.append(code.pushTarget());
        code.put({EVMCode::jumpIf});
    }
    code.push(quint64{0}).push(quint64{0}).put({EVMCode::refuse});
    for (qsizetype i = 0; i < functions.size(); ++i) {
        code.setTarget(targets[i]);
        functions[i].body(code);
    }
    return code.bytes();
}

EVMFunction returningSlots(const QString& signature, quint64 first, quint64 count) {
    return {signature, [first, count](EVMCode& code) {
                for (quint64 i = 0; i < count; ++i)
                    code.push(first + i).put({EVMCode::load}).keep(i);
                code.giveBackWords(count);
            }};
}

EVMFunction returningProduct(const QString& signature, quint64 slot, quint64 argument, const Word& divisor) {
    return {signature, [slot, argument, divisor](EVMCode& code) {
                constexpr quint64 selectorSize = 4;
                code.push(divisor).push(selectorSize + argument * wordSize).put({EVMCode::loadInput});
                code.push(slot).put({EVMCode::load, EVMCode::multiply, EVMCode::divide});
                code.keep(0).giveBackWords(1);
            }};
}

EVMFunction returningRound(const QString& signature, std::function<void(EVMCode&)> pushId) {
    return {signature, [pushId](EVMCode& code) {
                pushId(code);
                code.put({EVMCode::duplicate}).keep(0).put({EVMCode::duplicate}).keep(4);
                code.put({EVMCode::duplicate, EVMCode::load}).keep(1);
                code.push(farAway()).put({EVMCode::add, EVMCode::load, EVMCode::duplicate}).refuseZero();
                code.put({EVMCode::duplicate}).keep(2).keep(3).giveBackWords(5);
            }};
}

Word timeSlot(quint64 phase, quint64 number) {
    QByteArray bytes = Word(phase, number).bytes().toByteArray();
    bytes[15] = 1;
    return Word(QByteArrayView(bytes));
}

} // namespace torvane

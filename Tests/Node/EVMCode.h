#pragma once

#include "Word.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <functional>
#include <initializer_list>

namespace torvane {

/// Machine code for Ethereum's virtual machine, put together by hand (Ethereum's yellow paper, appendix H): contracts
/// whose functions answer from storage, so that a test sets their figures without compiling anything.
class EVMCode final {
public:
    enum Operation : quint8 {
        add = 0x01,
        multiply = 0x02,
        divide = 0x04,
        equal = 0x14,
        isZero = 0x15,
        shiftRight = 0x1c,
        loadInput = 0x35,
        storeMemory = 0x52,
        load = 0x54,
        jumpIf = 0x57,
        here = 0x5b,
        duplicate = 0x80,
        giveBack = 0xf3,
        refuse = 0xfd,
    };

    EVMCode& put(std::initializer_list<Operation> operations);
    EVMCode& push(const Word& word);
    EVMCode& push(quint64 number) { return push(Word(number)); }

    /// The word on top of the stack into memory, at this word's place.
    EVMCode& keep(quint64 place);

    /// Ends the call with so many words of memory.
    EVMCode& giveBackWords(quint64 count);

    /// Ends the call as refused when the word on top of the stack is zero.
    EVMCode& refuseZero();

    /// A jump whose target is not known yet: where to write it.
    qsizetype pushTarget();
    void setTarget(qsizetype place);

    const QByteArray& bytes() const { return m_bytes; }

private:
    QByteArray m_bytes;
};

/// A function of a contract: its signature, and what it does.
struct EVMFunction {
    QString signature;
    std::function<void(EVMCode&)> body;
};

/// The code of a contract with these functions; any other call is refused.
QByteArray evmContract(const QList<EVMFunction>& functions);

/// Returns the words of these storage slots.
EVMFunction returningSlots(const QString& signature, quint64 first, quint64 count);

/// Returns the slot times the argument at this word of the input, divided.
EVMFunction returningProduct(const QString& signature, quint64 slot, quint64 argument, const Word& divisor);

/// Returns the price feed's round of the id that `pushId` puts on the stack: the price stands in the slot of the id's
/// number, and the time 2^128 further. Where there is no time the call is refused.
EVMFunction returningRound(const QString& signature, std::function<void(EVMCode&)> pushId);

/// The slot that holds the time of a round.
Word timeSlot(quint64 phase, quint64 number);

} // namespace torvane

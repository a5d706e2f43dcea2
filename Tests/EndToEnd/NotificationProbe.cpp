#include "Coordination/Notifications.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <array>
#include <unistd.h>

using namespace torvane;

namespace {

/// An order: BASE-FEE THRESHOLD sound|silent.
void obey(const QByteArray& order) {
    const QList<QByteArray> words = order.split(' ');
    GasNotifier::fireCheapGas(words.value(0).toDouble(), words.value(1).toLongLong(), words.value(2) == "sound");
}

/// Obeys all whole lines and leaves the rest.
void obeyAll(QByteArray& orders) {
    for (qsizetype end = orders.indexOf('\n'); end != -1; end = orders.indexOf('\n')) {
        obey(orders.first(end));
        orders.remove(0, end + 1);
    }
}

} // namespace

/// The notifications without the rest of the program: one for each line of the input, until that ends.
int main(int argc, char* argv[]) {
    QCoreApplication application(argc, argv);
    GasNotifier::requestAuthorization();
    QByteArray orders;
    QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, &input, [&] {
        std::array<char, 256> bytes{};
        const ssize_t length = read(STDIN_FILENO, bytes.data(), bytes.size());
        if (length <= 0) {
            input.setEnabled(false);
            QCoreApplication::quit();
            return;
        }
        orders.append(bytes.data(), length);
        obeyAll(orders);
    });
    return QCoreApplication::exec();
}

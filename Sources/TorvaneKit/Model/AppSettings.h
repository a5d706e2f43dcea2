#pragma once

#include "Support/Setting.h"

#include <QHashFunctions>

namespace torvane {

struct GasData;

/// The unit in which prices are shown.
enum class Denomination { gwei, usd };

/// The appearance of windows: the desktop's own or a forced one.
enum class AppTheme { auto_, light, dark };

/// How often live gas quotes are polled.
enum class LiveGasCadence { perBlock, fifteen, thirty, sixty };

/// Which gas figure the Ethereum badge shows.
enum class BadgeSource { baseFee, low, average, high };

// The raw values are what is stored and what users read.

template <>
inline constexpr std::array rawValues<Denomination>{
    std::pair{Denomination::gwei, QLatin1StringView("gwei")},
    std::pair{Denomination::usd, QLatin1StringView("USD")},
};

template <>
inline constexpr std::array rawValues<AppTheme>{
    std::pair{AppTheme::auto_, QLatin1StringView("Auto")}, // `auto` is a word of the language.
    std::pair{AppTheme::light, QLatin1StringView("Light")},
    std::pair{AppTheme::dark, QLatin1StringView("Dark")},
};

template <>
inline constexpr std::array rawValues<LiveGasCadence>{
    std::pair{LiveGasCadence::perBlock, QLatin1StringView("Per block")},
    std::pair{LiveGasCadence::fifteen, QLatin1StringView("15s")},
    std::pair{LiveGasCadence::thirty, QLatin1StringView("30s")},
    std::pair{LiveGasCadence::sixty, QLatin1StringView("60s")},
};

template <>
inline constexpr std::array rawValues<BadgeSource>{
    std::pair{BadgeSource::baseFee, QLatin1StringView("Base fee")},
    std::pair{BadgeSource::low, QLatin1StringView("Low")},
    std::pair{BadgeSource::average, QLatin1StringView("Average")},
    std::pair{BadgeSource::high, QLatin1StringView("High")},
};

/// The cadence's interval in seconds; none where polling follows the chain's block time.
std::optional<double> fixedInterval(LiveGasCadence cadence);

/// The figure that the source selects, in gwei.
double value(BadgeSource source, const GasData& gas);

/// The network that the badge follows: Ethereum, or a Layer 2 network by its name, known or not.
class BadgeChain final {
public:
    static BadgeChain ethereum() { return BadgeChain(std::nullopt); }
    static BadgeChain l2(const QString& name) { return BadgeChain(name); }

    /// "ethereum", exactly, and the empty string stand for Ethereum, every other string for the network of that name.
    static BadgeChain fromStorageValue(const QString& text);

    bool isEthereum() const { return !m_name; }
    QString title() const;        ///< "Ethereum", or the name
    QString storageValue() const; ///< "ethereum", or the name

    bool operator==(const BadgeChain&) const = default;

    friend size_t qHash(const BadgeChain& chain, size_t seed = 0) {
        return qHashMulti(seed, chain.m_name.has_value(), chain.m_name.value_or(QString()));
    }

private:
    explicit BadgeChain(std::optional<QString> name)
        : m_name(std::move(name)) {}

    std::optional<QString> m_name; ///< of a Layer 2 network
};

/// All that the user can choose. One instance lives as long as the program; it is used on the main thread only.
class AppSettings final : public SettingsOwner {
    Q_OBJECT

public:
    using SettingsOwner::SettingsOwner;

    Setting<Denomination> denom{this, "denom", Denomination::gwei};
    Setting<LiveGasCadence> liveCadence{this, "liveGasCadence", LiveGasCadence::perBlock};
    Setting<AppTheme> theme{this, "theme", AppTheme::auto_};
    Setting<bool> menuNumber{this, "menuNumber", true};
    Setting<BadgeSource> badgeSource{this, "badgeSource", BadgeSource::low};
    Setting<BadgeChain> badgeChain{this, "badgeChain", BadgeChain::ethereum()};
    Setting<bool> menuDot{this, "menuDot", true};
    Setting<bool> colorIcon{this, "colorIcon", false};
    Setting<bool> launchAtLogin{this, "launchAtLogin", false};
    Setting<bool> alertEnabled{this, "alertEnabled", false};
    Setting<qint64> alert{this, "alert", 10}; ///< the cheap-gas threshold in whole gwei; any number
    Setting<bool> sound{this, "sound", false};
    Setting<QSet<QString>> disabledL2{this, "disabledL2", {}}; ///< names of the networks that are switched off

    /// True unless the network is switched off: one never seen before is enabled.
    bool isEnabled(const QString& network) const { return !disabledL2->contains(network); }

    /// Switches the network off or on again.
    void toggle(const QString& network);
};

} // namespace torvane

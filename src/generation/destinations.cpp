#include "generation/destinations.h"

#include <arpa/inet.h>

#include <algorithm>
#include <array>

namespace tavrelon::generation {

using namespace Qt::StringLiterals;

namespace {

/// The first bits of numbers that no router hands on to the world.
struct Network {
    std::uint32_t number;
    int bits;
};
constexpr auto privateNetworks = std::to_array<Network>({
    {0x00000000, 8},   // this host
    {0x0A000000, 8},   // 10.0.0.0
    {0x64400000, 10},  // 100.64.0.0, behind a carrier or in an overlay network
    {0x7F000000, 8},   // loopback
    {0xA9FE0000, 16},  // link-local
    {0xAC100000, 12},  // 172.16.0.0
    {0xC0A80000, 16},  // 192.168.0.0
});

bool isPrivate(std::uint32_t number) {
    return std::ranges::any_of(privateNetworks, [number](const Network& network) {
        return number >> (32 - network.bits) == network.number >> (32 - network.bits);
    });
}

bool isPrivate(const in6_addr& address) {
    if (IN6_IS_ADDR_V4MAPPED(&address))
        return isPrivate(std::uint32_t{address.s6_addr[12]} << 24 | std::uint32_t{address.s6_addr[13]} << 16 |
                         std::uint32_t{address.s6_addr[14]} << 8 | std::uint32_t{address.s6_addr[15]});
    const bool isUniqueLocal = (address.s6_addr[0] & 0xFE) == 0xFC;
    return isUniqueLocal || IN6_IS_ADDR_LOOPBACK(&address) || IN6_IS_ADDR_UNSPECIFIED(&address) ||
           IN6_IS_ADDR_LINKLOCAL(&address);
}

bool isLocalName(const QString& name) {
    constexpr std::array localEndings{".localhost"_L1, ".local"_L1,     ".lan"_L1,
                                      ".internal"_L1,  ".home.arpa"_L1, ".test"_L1};
    return !name.contains(u'.') ||
           std::ranges::any_of(localEndings, [&](QLatin1StringView ending) { return name.endsWith(ending); });
}

}  // namespace

std::vector<QUrl> destinations(const ServiceConfiguration& configuration, RequestContents contents) {
    if (configuration.ollamaEnabled && contents != RequestContents::Text)
        return {QUrl(configuration.ollamaChatURL())};
    if (configuration.asksGatewayOnly())
        return {QUrl(configuration.pollinationsBaseURL())};
    const QUrl gateway(configuration.pollinationsBaseURL());
    std::vector<QUrl> list;
    if (configuration.asksOwnModel())
        list.push_back(gateway);
    if (configuration.effectiveNvidiaApiKey())
        list.emplace_back(configuration.endpoints.nvidiaChatCompletionsURL);
    if (!configuration.asksOwnModel())
        list.push_back(gateway);
    if (configuration.glmApiKey())
        list.emplace_back(configuration.endpoints.glmBaseURL);
    return list;
}

bool isPublic(const QUrl& address) {
    auto host = address.host().toLower();
    if (host.endsWith(u'.'))
        host.chop(1);
    const auto bytes = host.section(u'%', 0, 0).toLatin1();  // without the zone of a link-local number
    in_addr number4{};
    if (inet_pton(AF_INET, bytes.constData(), &number4) == 1)
        return !isPrivate(ntohl(number4.s_addr));
    in6_addr number6{};
    if (inet_pton(AF_INET6, bytes.constData(), &number6) == 1)
        return !isPrivate(number6);
    return !isLocalName(host);
}

}  // namespace tavrelon::generation

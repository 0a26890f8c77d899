#include <gtest/gtest.h>

#include <QDir>
#include <random>

#include "fuzz/fuzz_targets.h"

namespace tavrelon::fuzz {

/// Every build reads the seeds, cut at every byte and damaged in many ways; the fuzzers go on from there.
TEST(FuzzSeeds, ASeedCutAnywhereOrDamagedEndsInAValueOrANamedError) {
    constexpr int damaged = 2'000;
    std::mt19937 random(5);
    for (const auto& target : targets) {
        const QDir seeds(QStringLiteral(FUZZ_SEEDS "/") + QLatin1StringView(target.name));
        const auto names = seeds.entryList(QDir::Files);
        EXPECT_FALSE(names.isEmpty()) << target.name;
        for (const auto& name : names) {
            QFile file(seeds.filePath(name));
            ASSERT_TRUE(file.open(QIODevice::ReadOnly));
            const auto seed = file.readAll();
            ASSERT_FALSE(seed.isEmpty());
            for (qsizetype length = 0; length <= seed.size(); ++length)
                target.read(seed.first(length));
            for (int round = 0; round < damaged; ++round) {
                auto bytes = seed;
                for (auto hits = random() % 4 + 1; hits > 0; --hits)
                    bytes[static_cast<qsizetype>(random() % static_cast<std::size_t>(bytes.size()))] =
                        static_cast<char>(random());
                target.read(bytes);
            }
        }
    }
}

}  // namespace tavrelon::fuzz

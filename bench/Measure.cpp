// SPDX-License-Identifier: MIT
#include "Measure.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>

namespace bench {

namespace {

// Shorter ones would measure the clock, and caches that another work has filled.
constexpr double batchSeconds = 0.02;
constexpr int fewestRounds = 9;
constexpr int mostRounds = 41;

double processorSeconds() {
    return double(std::clock()) / CLOCKS_PER_SEC;
}

double elapsedSeconds() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

void runOnce(const Work& work) {
    if (work.run()) return;
    std::fprintf(stderr, "What is measured went wrong.\n");
    std::exit(1);
}

double batch(const Work& work, int times) {
    if (!work.before) {
        const double start = processorSeconds();
        for (int time = 0; time < times; ++time) runOnce(work);
        return (processorSeconds() - start) / times;
    }
    double sum = 0;
    for (int time = 0; time < times; ++time) {
        work.before();
        const double start = processorSeconds();
        runOnce(work);
        sum += processorSeconds() - start;
    }
    return sum / times;
}

/// A work with the number of times that make a batch, and what its batches took.
class Repeated {
public:
    explicit Repeated(Work work) : m_work(std::move(work)) {
        if (!m_work.run) return;
        // The first time fills caches.
        batch(m_work, 1);
        const double once = batch(m_work, 1);
        m_times = int(std::clamp(batchSeconds / std::max(once, 1e-7), 1.0, 10000.0));
    }

    void measure() {
        if (m_work.run) m_seconds.push_back(batch(m_work, m_times));
    }

    [[nodiscard]] const std::vector<double>& seconds() const { return m_seconds; }

private:
    Work m_work;
    int m_times = 1;
    std::vector<double> m_seconds;
};

}  // namespace

Figures measure(const Growing& growing, double seconds) {
    const double end = elapsedSeconds() + seconds;
    std::vector<Repeated> subjects;
    std::vector<Repeated> yardsticks;
    std::size_t compared = 0;
    for (const int size : growing.sizes) {
        Pair pair = growing.make(size);
        const bool isCompared = size == growing.comparedSize;
        if (isCompared) compared = subjects.size();
        subjects.emplace_back(std::move(pair.subject));
        yardsticks.emplace_back(isCompared ? std::move(pair.yardstick) : Work());
    }
    for (int round = 0; round < mostRounds; ++round) {
        if (round >= fewestRounds && elapsedSeconds() > end) break;
        for (std::size_t at = 0; at < subjects.size(); ++at) {
            // Neither always comes first.
            if (round % 2 == 0) subjects[at].measure();
            yardsticks[at].measure();
            if (round % 2 != 0) subjects[at].measure();
        }
    }

    Figures figures;
    const std::vector<double>& ours = subjects[compared].seconds();
    const std::vector<double>& theirs = yardsticks[compared].seconds();
    figures.subject = median(ours);
    if (!theirs.empty()) {
        std::vector<double> ratios;
        for (std::size_t at = 0; at < ours.size(); ++at) ratios.push_back(ours[at] / theirs[at]);
        figures.yardstick = median(theirs);
        figures.ratio = median(ratios);
    }
    // The least of each is what other work on the machine disturbed least.
    std::vector<double> least;
    for (const Repeated& subject : subjects) {
        least.push_back(*std::min_element(subject.seconds().begin(), subject.seconds().end()));
    }
    figures.growth = fittedGrowth(growing.sizes, least);
    return figures;
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    const std::size_t middle = values.size() / 2;
    return values.size() % 2 != 0 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

double fittedGrowth(const std::vector<int>& sizes, const std::vector<double>& values) {
    if (sizes.size() < 2) return 0;
    const auto count = double(sizes.size());
    double sizeSum = 0;
    double valueSum = 0;
    for (std::size_t at = 0; at < sizes.size(); ++at) {
        sizeSum += std::log(sizes[at]);
        valueSum += std::log(values[at]);
    }
    double together = 0;
    double spread = 0;
    for (std::size_t at = 0; at < sizes.size(); ++at) {
        const double size = std::log(sizes[at]) - sizeSum / count;
        together += size * (std::log(values[at]) - valueSum / count);
        spread += size * size;
    }
    return together / spread;
}

}  // namespace bench

// The glossary's index beside the plain scan that it stands for, on a message of 2,000 characters and on a
// short one.

#include "Data/BuiltinTerms.h"
#include "Data/TermIndex.h"

#include <benchmark/benchmark.h>

#include <random>

namespace {

using lumarin::TermDictionary;
using lumarin::TermIndex;

constexpr std::size_t longMessage = 2000;
constexpr std::size_t shortMessage = 20;

TermDictionary builtin() {
    TermDictionary terms;
    for (const auto& term : lumarin::builtinTerms)
        terms.emplace(term.chinese, term.english);
    return terms;
}

// A Chinese character of the 3,000 or so that are in common use, more or less.
std::string character(std::mt19937& random) {
    unsigned code = 0x4E00U + std::uniform_int_distribution<unsigned>(0, 3000)(random);
    return {static_cast<char>(0xE0U | code >> 12U), static_cast<char>(0x80U | (code >> 6U & 0x3FU)),
            static_cast<char>(0x80U | (code & 0x3FU))};
}

// The built-in terms and others of two to six characters. With `alike` they all begin with the same two.
TermDictionary glossary(std::size_t size, bool alike) {
    std::mt19937 random(1);
    auto terms = builtin();
    while (terms.size() < size) {
        std::string term = alike ? "报价" : "";
        for (auto length = std::uniform_int_distribution<int>(2, 6)(random); length > 0; --length)
            term += character(random);
        terms.emplace(term, "rendering");
    }
    return terms;
}

// Every fourth word of the message is a term.
std::string message(const TermDictionary& terms, std::size_t characters) {
    std::mt19937 random(2);
    std::vector<std::string> known;
    for (const auto& term : terms)
        known.push_back(term.first);
    std::string text;
    for (std::size_t i = 0; i < characters; ++i) {
        if (i % 12 == 0) {
            const auto& term = known[std::uniform_int_distribution<std::size_t>(0, known.size() - 1)(random)];
            text += term;
            i += term.size() / 3;
        }
        text += character(random);
    }
    return text;
}

void index(benchmark::State& state) {
    const auto terms = glossary(static_cast<std::size_t>(state.range(0)), state.range(2) != 0);
    const auto text = message(terms, static_cast<std::size_t>(state.range(1)));
    const TermIndex index(terms);
    for (auto _ : state)
        benchmark::DoNotOptimize(index.termsIn(text));
}

void plainScan(benchmark::State& state) {
    const auto terms = glossary(static_cast<std::size_t>(state.range(0)), state.range(2) != 0);
    const auto text = message(terms, static_cast<std::size_t>(state.range(1)));
    for (auto _ : state) {
        TermDictionary found;
        for (const auto& term : terms)
            if (text.find(term.first) != std::string::npos)
                found.insert(term);
        benchmark::DoNotOptimize(found);
    }
}

void sizes(benchmark::internal::Benchmark* benchmark) {
    benchmark->ArgNames({"terms", "characters", "alike"})->Unit(benchmark::kMicrosecond);
    for (int terms : {96, 100, 1'000, 10'000, 100'000})
        benchmark->Args({terms, longMessage, 0});
    benchmark->Args({96, shortMessage, 0});
    benchmark->Args({100'000, longMessage, 1});
}

BENCHMARK(index)->Apply(sizes);
BENCHMARK(plainScan)->Apply(sizes);

} // namespace

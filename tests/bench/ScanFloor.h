// The floor every parser benchmark is measured against: the same copy of
// the tool's text into the shared output buffer and one pass counting its
// lines.
#pragma once

#include <benchmark/benchmark.h>

#include <string>

#include "RaidLibToolRunner.h"
#include "ScriptedTool.h"

inline void ScanToolText(benchmark::State &State, const std::string &Text) {
  for (auto _ : State) {
    backend_test::LoadToolText(Text);
    UINTN Lines = 0;
    for (const CHAR16 *Cursor = gRaidToolOutput; *Cursor != 0; Cursor++) {
      Lines += *Cursor == u'\n';
    }
    benchmark::DoNotOptimize(Lines);
  }
  State.SetBytesProcessed(State.iterations() * Text.size() * sizeof(CHAR16));
}

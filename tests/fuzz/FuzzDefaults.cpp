// Options every target runs with unless the command line says otherwise:
// no LeakSanitizer scan after each input. The targets check the emulator's
// pool after every input themselves, and the emulator's own bookkeeping
// grows between inputs, so libFuzzer would scan the whole heap after
// nearly every input and find nothing the pool check does not.
//
// A target built with FUZZ_DEFAULT_MAX_LEN also caps its inputs at that
// many bytes: its parsers cost time per character, and without a cap the
// largest seed (a whole adapter's report) sets the length of every input.
#include <cstdlib>
#include <vector>

#define FUZZ_TEXT(Value) #Value
#define FUZZ_FLAG(Name, Value) "-" Name "=" FUZZ_TEXT(Value)

extern "C" int LLVMFuzzerInitialize(int *Argc, char ***Argv) {
  // libFuzzer reads its flags after this call; the default goes right after
  // the program name, so a "-detect_leaks=1" given later still wins.
  static std::vector<char *> Arguments;
  static char DetectLeaks[] = "-detect_leaks=0";
  Arguments.assign(*Argv, *Argv + *Argc);
  auto Defaults = Arguments.begin() + (*Argc > 0 ? 1 : 0);
#ifdef FUZZ_DEFAULT_MAX_LEN
  static char MaxLen[] = FUZZ_FLAG("max_len", FUZZ_DEFAULT_MAX_LEN);
  Defaults = Arguments.insert(Defaults, MaxLen);
#endif
  Arguments.insert(Defaults, DetectLeaks);
  Arguments.push_back(nullptr);
  *Argc = static_cast<int>(Arguments.size() - 1);
  *Argv = Arguments.data();
  return 0;
}

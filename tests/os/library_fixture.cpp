// A library that is loaded by name.
#ifdef LACKS_A_FUNCTION
extern "C" int NowhereToBeFound();
#else
namespace {
int NowhereToBeFound() {
  return 42;
}
}  // namespace
#endif

extern "C" __attribute__((visibility("default"))) int Answer() {
  return NowhereToBeFound();
}

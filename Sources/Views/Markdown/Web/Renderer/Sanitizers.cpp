// Only in builds with AddressSanitizer, which the web engine was not built with: it gives the size of a base class when
// it deletes a derived one. ASAN_OPTIONS may still say more.
extern "C" const char* __asan_default_options(); // NOLINT(bugprone-reserved-identifier): the sanitizer's own name

extern "C" const char* __asan_default_options() { // NOLINT(bugprone-reserved-identifier)
    return "new_delete_type_mismatch=0:detect_leaks=0";
}

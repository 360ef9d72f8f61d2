// A shared object whose places the tests look up. The comment MARK names the line of a place.

namespace {

__attribute__((noinline)) const void* afterCall() {
    __asm__ volatile("");
    return __builtin_return_address(0);
}

__attribute__((always_inline)) inline const void* inlinedPlace(int& calls) {
    const void* const place = afterCall();  // MARK inlined
    ++calls;
    return place;
}

}  // namespace

namespace marked {

__attribute__((noinline, visibility("default"))) const void* plainPlace(int& calls) {  // MARK function
    const void* const place = afterCall();                                             // MARK plain
    ++calls;
    return place;
}

}  // namespace marked

extern "C" {

__attribute__((visibility("default"))) const void* plain(int* calls) {
    const void* const place = marked::plainPlace(*calls);
    return place;
}

__attribute__((visibility("default"))) const void* outer(int* calls) {
    const void* const place = inlinedPlace(*calls);  // MARK outer
    return place;
}

__attribute__((visibility("default"))) void callBack(void (*function)(), int* calls) {
    function();
    ++*calls;
}
}

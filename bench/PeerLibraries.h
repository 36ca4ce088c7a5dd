// bench/PeerLibraries.h
//
// Peers for the benchmarks, loaded at run time so that several libraries
// exporting the same Fortran symbols (the reference BLAS and OpenBLAS both
// define ddot_) can be timed side by side in one program. Each peer lives in
// its own dynamic-linker namespace, so the reference LAPACK is bound to the
// reference BLAS, never to whichever BLAS the system alternative points at.
//
// CMake passes the paths it found as KXBENCH_*_PATH definitions; a peer that
// was not found, or fails to load, reports Loaded() == false. A benchmark
// finds the routines it times with FindRoutines, which skips the benchmark
// with a message naming what is missing:
//
//   PackedFn dpptrf, dpptri;
//   if (!kxbench::FindRoutines(state, peer, dpptrf, "dpptrf_", dpptri, "dpptri_")) return;
#ifndef KXCOMMONR_BENCH_PEERLIBRARIES_H
#define KXCOMMONR_BENCH_PEERLIBRARIES_H

#ifndef _GNU_SOURCE
#define _GNU_SOURCE
#endif
#include <dlfcn.h>

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

namespace kxbench {

class PeerLibrary {
 public:
  // Loads the given shared objects, in order, into one fresh namespace.
  PeerLibrary(std::string name, const std::vector<std::string>& paths) : name_(std::move(name)) {
    Lmid_t space = LM_ID_NEWLM;
    for (const std::string& path : paths) {
      if (path.empty()) { handles_.clear(); return; }
      void* handle = dlmopen(space, path.c_str(), RTLD_NOW | RTLD_LOCAL);
      if (handle == nullptr) { handles_.clear(); return; }
      if (space == LM_ID_NEWLM) dlinfo(handle, RTLD_DI_LMID, &space);
      handles_.push_back(handle);
    }
  }
  PeerLibrary(const PeerLibrary&) = delete;
  PeerLibrary& operator=(const PeerLibrary&) = delete;

  bool Loaded() const { return !handles_.empty(); }
  const std::string& Name() const { return name_; }

  // The symbol as a function pointer of type Fn, or nullptr when absent.
  template <class Fn>
  Fn Get(const char* symbol) const {
    for (auto it = handles_.rbegin(); it != handles_.rend(); ++it) {
      if (void* address = dlsym(*it, symbol)) return reinterpret_cast<Fn>(address);
    }
    return nullptr;
  }

 private:
  std::string name_;
  std::vector<void*> handles_;
};

#ifndef KXBENCH_REFERENCE_BLAS_PATH
#define KXBENCH_REFERENCE_BLAS_PATH ""
#endif
#ifndef KXBENCH_REFERENCE_LAPACK_PATH
#define KXBENCH_REFERENCE_LAPACK_PATH ""
#endif
#ifndef KXBENCH_OPENBLAS_PATH
#define KXBENCH_OPENBLAS_PATH ""
#endif

// The reference BLAS (Netlib, Debian's libblas3).
inline const PeerLibrary& ReferenceBlas() {
  static const PeerLibrary library("refblas", {KXBENCH_REFERENCE_BLAS_PATH});
  return library;
}

// The reference LAPACK over the reference BLAS.
inline const PeerLibrary& ReferenceLapack() {
  static const PeerLibrary library(
      "reflapack", {KXBENCH_REFERENCE_BLAS_PATH, KXBENCH_REFERENCE_LAPACK_PATH});
  return library;
}

// OpenBLAS (BLAS and LAPACK), forced to one thread.
inline const PeerLibrary& OpenBlas() {
  static const PeerLibrary& library = [] () -> const PeerLibrary& {
    static const PeerLibrary loaded("openblas", {KXBENCH_OPENBLAS_PATH});
    if (auto setThreads = loaded.Get<void (*)(int)>("openblas_set_num_threads")) setThreads(1);
    return loaded;
  }();
  return library;
}

namespace detail {

inline void FindEach(const PeerLibrary&, std::string&) {}

template <class Fn, class... Rest>
void FindEach(const PeerLibrary& peer, std::string& missing, Fn& routine,
              const char* symbol, Rest&&... rest) {
  routine = peer.Get<Fn>(symbol);
  if (routine == nullptr) missing += (missing.empty() ? " " : ", ") + std::string(symbol);
  FindEach(peer, missing, rest...);
}

}  // namespace detail

// Sets each function pointer to the peer's routine of the name that follows
// it (FindRoutines(peer, ddot, "ddot_", dasum, "dasum_")). Returns an empty
// string when the peer is loaded and exports them all, otherwise what is
// missing ("openblas: not loaded", "refblas: missing dpptri_"); the pointers
// of missing routines are null.
template <class... RoutinesAndSymbols>
std::string FindRoutines(const PeerLibrary& peer, RoutinesAndSymbols&&... routinesAndSymbols) {
  std::string missing;
  detail::FindEach(peer, missing, routinesAndSymbols...);
  if (!peer.Loaded()) return peer.Name() + ": not loaded";
  return missing.empty() ? missing : peer.Name() + ": missing" + missing;
}

// The same for a benchmark: true when every routine was found; otherwise
// the benchmark is skipped with the message and the caller returns.
template <class... RoutinesAndSymbols>
bool FindRoutines(benchmark::State& state, const PeerLibrary& peer,
                  RoutinesAndSymbols&&... routinesAndSymbols) {
  const std::string missing = FindRoutines(peer, routinesAndSymbols...);
  if (missing.empty()) return true;
  state.SkipWithError(missing.c_str());
  return false;
}

}  // namespace kxbench

#endif  // KXCOMMONR_BENCH_PEERLIBRARIES_H

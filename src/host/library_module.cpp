// The shared library the fax service loads. Its exported entry points join this module as the host
// frame is built; until then it carries the core and nothing else.
namespace tqv {

// Identifies the module in diagnostics; keeps the module non-empty for every toolchain.
extern const char kModuleDescription[];
const char kModuleDescription[] = "TQVSPOOL.DLL GateWay File-converter";

}  // namespace tqv

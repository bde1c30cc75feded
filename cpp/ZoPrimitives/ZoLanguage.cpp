#include "ZoPrimitives/ZoLanguage.h"

#include "ZoPrimitives/TextTables.h"
#include "ZoPrimitives/UserText.h"
#include "ZoPrimitives/XStream.h"
#include "ZoPrimitives/ZoAssert.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <span>

namespace ZoPrimitives {

namespace {

constexpr const char* NAMES[] = {"pt-BR", "en-US", "es-MX"}; // as `Language` counts

constinit std::atomic<Language> current = Language::Portuguese;

bool Before(const TZoText& text, const char* key) { return std::strcmp(text.key, key) < 0; }

constexpr bool Ascends(std::span<const TZoText> texts) {
    const auto follows = [](const TZoText& a, const TZoText& b) {
        const char* p = a.key;
        const char* q = b.key;
        while (*p != '\0' && *p == *q) ++p, ++q;
        return static_cast<unsigned char>(*p) >= static_cast<unsigned char>(*q);
    };
    return std::adjacent_find(texts.begin(), texts.end(), follows) == texts.end();
}
static_assert(Ascends(LIBRARY_TEXTS));

/// Tables stay as long as the process runs.
struct Table {
    std::span<const TZoText> texts;
    std::atomic<Table*> next = nullptr;
};
constinit Table library{LIBRARY_TEXTS};

} // namespace

Language CurrentLanguage() noexcept { return current.load(std::memory_order_relaxed); }

const char* ZoLanguage() noexcept { return NAMES[static_cast<int>(CurrentLanguage())]; }

void ZoSetLanguage(const ZoString& name) {
    const auto asked = std::find_if(std::begin(NAMES), std::end(NAMES),
                                    [&](const char* known) { return ZoString(known).Equal(name, false); });
    if (asked == std::end(NAMES)) throw XInvalidLanguage(name, "ZoSetLanguage");
    current.store(static_cast<Language>(asked - NAMES), std::memory_order_relaxed);
}

const TZoText* FindInTables(const char* key) noexcept {
    for (const Table* table = &library; table != nullptr;
         table = table->next.load(std::memory_order_acquire)) {
        const auto found = std::lower_bound(table->texts.begin(), table->texts.end(), key, Before);
        if (found != table->texts.end() && std::strcmp(found->key, key) == 0) return &*found;
    }
    return nullptr;
}

void ZoAddTexts(const TZoText* texts, std::size_t count) {
    const std::span<const TZoText> added(texts, count);
    ZO_ASSERT(Ascends(added), "[zoerror] the texts must be sorted by their keys. See ZoAddTexts.",
              "cpp/ZoPrimitives/ZoLanguage");
    auto* table = new Table{added};
    Table* last = &library;
    for (Table* none = nullptr; !last->next.compare_exchange_weak(none, table, std::memory_order_acq_rel);
         none = nullptr) {
        while (Table* further = last->next.load(std::memory_order_acquire)) last = further;
    }
}

} // namespace ZoPrimitives

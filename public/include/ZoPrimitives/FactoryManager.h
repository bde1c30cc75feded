#pragma once

#include "ZoPrimitives/IList.h"
#include "ZoPrimitives/ZoString.h"

namespace ZoPrimitives {

/// An object of the application's that makes others and is found by its name. Applications derive from it.
class ZO_API IZoFactory : public ZoObject {
public:
    /// Must not change while the factory is listed.
    virtual ZoPortableString GetName() const = 0;
    ~IZoFactory() override;
};

/// The factories of the process, by name.
///
/// The list is not guarded: threads may look factories up at the same time as long as none adds or clears.
/// Factories still listed when the process ends are not destroyed: their code may be gone.
class ZO_API TFactoryManager {
public:
    /// Lists a factory, held by a `pointer`. It replaces one of the same name.
    static void AddFactory(IZoFactory* factory);
    /// Null if no factory has that name.
    static IZoFactory* GetFactory(const ZoString& name);
    /// Empties the list, which deletes factories that nothing else holds.
    static void ClearAllFactories();

private:
    TFactoryManager() = default;

    using Factories = TIList<IZoFactory, pointer<IZoFactory>>;
    static Factories& listFactories();
};

} // namespace ZoPrimitives

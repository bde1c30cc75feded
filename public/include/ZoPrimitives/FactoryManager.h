#pragma once

#include "ZoPrimitives/IList.h"
#include "ZoPrimitives/ZoString.h"

namespace ZoPrimitives {

/// What an application finds by its name, to make objects with. Applications derive from it.
class ZO_API IZoFactory : public ZoObject {
public:
    /// Stays the same as long as the factory is listed.
    virtual ZoPortableString GetName() const = 0;
    ~IZoFactory() override;
};

/// The factories of the process, by name.
///
/// The list is not guarded: threads may look factories up at the same time, as long as none adds or clears.
/// Factories that are still listed when the process ends are not destroyed: their code may have gone before.
class ZO_API TFactoryManager {
public:
    /// Lists a factory, which the list holds by a `pointer`. It takes the place of one of the same name.
    static void AddFactory(IZoFactory* factory);
    /// Null for a name that no factory has.
    static IZoFactory* GetFactory(const ZoString& name);
    /// Empties the list. Factories that nothing else holds are deleted.
    static void ClearAllFactories();

private:
    TFactoryManager() = default;

    using Factories = TIList<IZoFactory, pointer<IZoFactory>>;
    static Factories& listFactories();
};

} // namespace ZoPrimitives

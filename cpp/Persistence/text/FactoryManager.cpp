#include "ZoPrimitives/FactoryManager.h"
#include "ZoPrimitives/ZoSources.h"

namespace ZoPrimitives {

IZoFactory::~IZoFactory() = default;

/// Created on first use, so that static initialisers may call it.
TFactoryManager::Factories& TFactoryManager::listFactories() {
    static auto* factories = new Factories;
    return *factories;
}

void TFactoryManager::AddFactory(IZoFactory* factory) {
    ZO_ASSERT(factory, "factory", ZoSources::FACTORY_MANAGER);
    const pointer<IZoFactory> holder(factory); // the list may hold the only reference to it
    if (IZoFactory* present = GetFactory(factory->GetName())) listFactories().Remove(present);
    listFactories().Add(factory);
}

IZoFactory* TFactoryManager::GetFactory(const ZoString& name) {
    for (const pointer<IZoFactory>& factory : listFactories()) {
        if (factory->GetName() == name) return factory.get();
    }
    return nullptr;
}

void TFactoryManager::ClearAllFactories() { listFactories().RemoveAll(); }

} // namespace ZoPrimitives

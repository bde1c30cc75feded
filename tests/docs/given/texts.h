static const TZoText TEXTS[] = {{"Beam", {"Viga", "Beam", "Trabe"}}};

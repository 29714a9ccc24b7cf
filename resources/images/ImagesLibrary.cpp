// The images library holds only compiled-in resources; a static library needs
// at least one source of its own.

namespace stations {}

## octave-cli install_octave.m PACKAGE LIST SHARE LIBRARY: installs the folder of a package into two folders.
[package, list, share, library] = argv (){:};
pkg ("local_list", make_absolute_filename (list));
pkg ("prefix", make_absolute_filename (share), make_absolute_filename (library));
pkg ("install", "-local", "-nodeps", package);

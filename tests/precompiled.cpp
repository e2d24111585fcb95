// The compiler makes the precompiled headers of the tests along with this file.

// The driver files hold resources only; a library needs a source all the same.

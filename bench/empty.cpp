// Does nothing: the start-up of whatever it is linked to.
int main() {
    return 0;
}
